"""dawnlyctl beside the running program: both change the same files, and neither undoes what the other did."""

import json
import os
import signal
import subprocess
import time
import unittest

from desktop import AWAY, Desktop

COMPANION = os.environ["DAWNLYCTL"]


class Companion(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)

    def companion(self, *arguments, code=0):
        done = subprocess.run([COMPANION, *arguments], env=self.desktop.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, code, done.stderr)
        return done.stdout

    def told(self, *arguments):
        return subprocess.run([COMPANION, *arguments], env=self.desktop.environment, text=True,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE).stderr

    def test_it_speaks_to_the_program_that_runs(self):
        self.companion("report", code=1)
        self.desktop.start_program()
        self.assertFalse(json.loads(self.companion("report"))["expanded"])
        self.companion("expand")
        self.desktop.wait_for(lambda: json.loads(self.companion("report"))["expanded"], "the panel to unfold")

    def call(self, method, *arguments):
        """Calls the program as any program on the bus may, and returns its answer, a line for each value."""
        answer = self.desktop.run("dbus-send", "--session", "--print-reply", "--dest=app.dawnly.Dawnly",
                                  "/app/dawnly/Dawnly", method, *arguments)
        return [line.strip() for line in answer.decode().splitlines()[1:]]

    def change_todo(self, *words, expires):
        return self.call("app.dawnly.Dawnly.ChangeTodo", *["string:" + word for word in words],
                         "double:%f" % expires)

    def test_changes_go_through_the_program_that_runs(self):
        d = self.desktop
        d.start_program()
        d.unfold()
        before = d.screenshot()
        self.assertEqual(self.companion("todo", "add", "Water", "the\x07 plants"), "1 [ ] Water the\ufffd plants\n")
        self.assertEqual(self.desktop.todos(), ["Water the\x07 plants"])  # in the file when the command ends
        # In the open panel at once: sooner than it would look into the file by itself.
        d.wait_for(lambda: d.screenshot().pixels != before.pixels, "the todo to show", 1)
        self.assertEqual(self.companion("todo", "rename", "1", "Water", "them"), "1 [ ] Water them\n")
        self.assertEqual(self.companion("todo", "prio", "1"), "1 [ ] ! Water them\n")
        self.assertEqual(self.companion("todo", "prio", "1"), "1 [ ] Water them\n")
        self.companion("todo", "delete", "1")
        self.assertEqual(self.desktop.todos(), [])
        # As after a deletion in the panel, Control+Z there brings it back, and then the old text.
        d.run("xdotool", "key", "Tab", "key", "ctrl+z")
        d.wait_for(lambda: self.desktop.todos() == ["Water them"], "the deletion to be taken back")
        d.key("ctrl+z")
        d.wait_for(lambda: self.desktop.todos() == ["Water the\x07 plants"], "the new text to be taken back")
        self.companion("flags", "prio", "some-card", "Some card")
        self.assertIn("some-card", json.loads(self.companion("flags", "list", "--json"))["prio"])
        # What is not its folder's is none of its business.
        other = os.path.join(d.home, "other")
        self.companion("todo", "--folder", other, "add", "Elsewhere")
        self.assertEqual(self.desktop.todos(), ["Water the\x07 plants"])
        self.assertEqual(self.companion("todo", "--folder", other, "list"), "1 [ ] Elsewhere\n")

    def test_the_interface_on_the_bus_keeps_its_promises(self):
        d = self.desktop
        d.start_program()
        self.assertIn('<method name="ChangeTodo">', "".join(self.call("org.freedesktop.DBus.Introspectable.Introspect")))
        todo, soon = "11111111-2222-4333-8444-555555555555", time.time() + 60
        for _ in range(2):  # whoever got no answer asks again
            answer = self.change_todo(d.briefings, "add", todo, "Once", expires=soon)
            self.assertEqual(answer[:2], ['string "written"', "uint32 1"])
        self.assertEqual(self.desktop.todos(), ["Once"])
        another = todo.replace("1", "2")
        for outcome, expires, *words in (("late", 1e9, d.briefings, "add", another, "Late"),
                                         ("otherFolder", soon, "/", "delete", todo, ""),
                                         ("invalid", soon, d.briefings, "frobnicate", todo, ""),
                                         ("invalid", soon, d.briefings, "add", "no-id", "Text"),
                                         ("invalid", soon, d.briefings, "rename", todo, " "),
                                         ("noSuchTodo", soon, d.briefings, "done", another, "")):
            self.assertEqual(self.change_todo(*words, expires=expires)[0], 'string "%s"' % outcome, words)
        for wrong in (("ChangeTodo", "string:x"), ("NoSuchThing",)):
            with self.assertRaises(subprocess.CalledProcessError):
                self.call("app.dawnly.Dawnly." + wrong[0], *wrong[1:])
        self.assertEqual(self.desktop.todos(), ["Once"])

    def test_a_program_that_hangs_delays_a_change_and_makes_it_no_second_time(self):
        d = self.desktop
        program = d.start_program()
        program.send_signal(signal.SIGSTOP)
        done = subprocess.run([COMPANION, "todo", "add", "While it hangs"], env=d.environment, text=True, timeout=12,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual((done.returncode, done.stdout), (0, "1 [ ] While it hangs\n"))
        self.assertIn("does not answer", done.stderr)
        self.companion("todo", "delete", "1")
        program.send_signal(signal.SIGCONT)
        time.sleep(3)  # it has got all that waited for it, and looked into the file
        self.assertEqual(self.desktop.todos(), [])
        self.companion("todo", "add", "Afterwards")
        self.assertEqual(self.desktop.todos(), ["Afterwards"])

    def test_settings_take_effect_in_the_running_program(self):
        d = self.desktop
        d.start_program()
        d.unfold()
        shown = d.screenshot().pixels
        self.companion("defaults", "write", "notchTheme", "custom")
        d.wait_for(lambda: d.screenshot().pixels != shown, "the other theme", 3)
        self.companion("defaults", "write", "notchTheme", "banana", code=1)
        self.companion("defaults", "write", "calendarAccess", "--bool", "true", code=1)
        self.assertEqual(self.companion("defaults", "read", "notchTheme"), "custom\n")
        d.move(*AWAY)
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold")
        self.companion("defaults", "write", "quickCaptureEnabled", "--bool", "false")
        d.key("ctrl+space")
        time.sleep(0.5)
        self.assertFalse(d.report()["expanded"])
        self.companion("defaults", "delete", "quickCaptureEnabled")
        self.assertNotIn("old folder", self.told("todo", "list"))
        self.companion("defaults", "write", "briefingsFolderPath", os.path.join(d.home, "other"))
        d.wait_for(lambda: "old folder" in self.told("todo", "list"), "the companion to tell of the todos' folder")
        d.key("ctrl+space")
        d.wait_for(lambda: d.report()["expanded"], "the hotkey to open the panel")

    def test_what_the_program_cannot_write_is_kept_and_told(self):
        d = self.desktop
        program = d.start_program()
        self.companion("todo", "add", "First")
        path = os.path.join(d.briefings, "todos.json")
        os.rename(path, path + ".saved")
        os.mkdir(path)  # nobody can write a folder
        self.assertEqual(self.companion("todo", "add", "Second", code=2), "[ ] Second\n")
        os.rmdir(path)
        os.rename(path + ".saved", path)
        program.kill()
        program.wait()
        d.start_program()
        d.wait_for(lambda: self.desktop.todos() == ["First", "Second"], "what the killed program still had to write")



if __name__ == "__main__":
    unittest.main()
