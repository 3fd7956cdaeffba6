"""The start of the program: one copy at a time, nothing lost between two of them, and its way into its place."""

import os
import shutil
import signal
import time
import unittest

from desktop import Desktop


def program_of(pid):
    try:
        return os.readlink("/proc/%d/exe" % pid)
    except OSError:  # gone meanwhile, or not ours
        return None


class Startup(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop(window_manager=True)
        self.addCleanup(self.desktop.close)

    def type(self, text):
        """Into the field for todos, and without entering it."""
        d = self.desktop
        d.key("ctrl+space")
        d.wait_for(lambda: d.report()["expanded"], "the hotkey to open the panel")
        time.sleep(0.5)
        d.run("xdotool", "type", text)

    def test_what_was_typed_and_not_entered_is_there_after_any_end(self):
        d = self.desktop
        program = d.start_program()
        self.type("Call")
        for end, more in ((signal.SIGTERM, " mum"), (None, " at"), (signal.SIGKILL, " noon")):
            # Only a sudden death may cost the last keys.
            time.sleep(1 if end == signal.SIGKILL else 0.1)
            older = program
            if end is not None:
                older.send_signal(end)
                older.wait()
            program = d.start(os.environ["DAWNLY"], stderr=None)
            d.wait_for(lambda: older.poll() is not None, "the older copy to end")
            d.wait_for(lambda: d.report()["panelVisible"], "the newer copy's panel")
            self.type(more)
        d.key("Return")
        d.start(os.environ["DAWNLY"], stderr=None)  # at once, before anything is saved
        d.wait_for(lambda: program.poll() is not None, "the older copy to end")
        self.assertEqual(program.returncode, 0)
        d.wait_for(lambda: d.todos() == ["Call mum at noon"], "the todo")
        d.wait_for(lambda: d.report()["panelVisible"], "the newer copy's panel")
        self.type("Another")
        d.key("Return")
        d.wait_for(lambda: "Another" in d.todos(), "a todo from a field that is empty again")

    def test_it_outlives_the_terminal_when_it_was_told_to(self):
        d = self.desktop
        for hangup in (signal.SIG_DFL, signal.SIG_IGN):
            program = d.start(os.environ["DAWNLY"], stderr=None, preexec_fn=lambda: signal.signal(signal.SIGHUP, hangup))
            d.wait_for(lambda: d.report(patience=0.3)["panelVisible"], "the panel to show")
            program.send_signal(signal.SIGHUP)
            if hangup == signal.SIG_DFL:
                self.assertEqual(program.wait(5), 0)
        time.sleep(1)
        self.assertIsNone(program.poll())
        program.send_signal(signal.SIGTERM)
        self.assertEqual(program.wait(5), 0)

    def test_a_copy_that_hangs_is_killed(self):
        d = self.desktop
        hanging = d.start_program()
        hanging.send_signal(signal.SIGSTOP)
        d.start(os.environ["DAWNLY"], stderr=None)
        d.wait_for(lambda: hanging.poll() is not None, "the hanging copy to be killed", 15)
        d.wait_for(lambda: d.report()["panelVisible"], "the newer copy's panel")

    def test_many_copies_at_once_leave_one(self):
        d = self.desktop
        copies = [d.start(os.environ["DAWNLY"]) for _ in range(6)]
        d.wait_for(lambda: sum(copy.poll() is None for copy in copies) == 1, "all but one to end", 30)
        d.wait_for(lambda: d.report()["panelVisible"], "its panel")
        time.sleep(1)
        self.assertEqual(sum(copy.poll() is None for copy in copies), 1)


class Installation(unittest.TestCase):
    """The program in a bundle that lies where downloads do."""

    def setUp(self):
        self.desktop = Desktop(window_manager=True)
        self.addCleanup(self.desktop.close)
        self.program = self.desktop.home + "/Downloads/Dawnly.app/bin/dawnly"
        self.installed = self.desktop.home + "/.local/lib/Dawnly.app/bin/dawnly"
        os.makedirs(os.path.dirname(self.program))
        shutil.copy(os.environ["DAWNLY"], self.program)
        self.addCleanup(self.end_installed)

    def installed_copies(self):
        return [int(name) for name in os.listdir("/proc") if name.isdigit() and program_of(int(name)) == self.installed]

    def end_installed(self):
        for pid in self.installed_copies():
            os.kill(pid, signal.SIGTERM)

    def start(self):
        d = self.desktop
        process = d.start(self.program, stderr=None)
        d.wait_for(lambda: d.focused_window() in d.search("Dawnly"), "the offer to move")
        return process

    def test_it_starts_with_the_session_from_its_first_run_on_and_stays_where_the_user_wants_it(self):
        d = self.desktop
        process = self.start()
        with open(d.home + "/config/autostart/app.dawnly.Dawnly.desktop") as file:
            self.assertIn('Exec="%s"\n' % self.program, file.read())
        self.assertTrue(d.defaults()["didAttemptLoginItemRegistration"])
        d.key("Escape")
        time.sleep(1.5)
        self.assertIsNone(process.poll())
        self.assertFalse(os.path.exists(self.installed))

    def test_it_moves_and_opens_the_copy(self):
        d = self.desktop
        process = self.start()
        d.key("Return")
        d.wait_for(lambda: process.poll() is not None, "the downloaded copy to end")
        d.wait_for(lambda: len(self.installed_copies()) == 1, "the installed copy to run")
        d.wait_for(lambda: d.report()["panelVisible"], "its panel")
        self.assertEqual(len(d.search("Dawnly")), 1)  # the panel, and nothing that asks


if __name__ == "__main__":
    unittest.main(verbosity=2)
