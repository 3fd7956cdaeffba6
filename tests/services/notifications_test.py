"""Notifications on a real notification daemon: shown, clicked, and shown again after the daemon was restarted."""

import json
import os
import time
import unittest

from session import PROGRAMS, Session

DUNST_CONFIGURATION = """[global]
mouse_left_click = do_action
width = 300
origin = top-left
offset = 50x50
markup = full
history_length = 20
"""


class NotificationsTest(unittest.TestCase):
    def open_session(self, services=()):
        session = Session(services)
        self.addCleanup(session.close)
        return session

    def start_daemon(self, session):
        path = f"{session.home}/dunstrc"
        with open(path, "w", encoding="utf-8") as configuration:
            configuration.write(DUNST_CONFIGURATION)
        return session.start("dunst", "-config", path)

    def displayed(self, session):
        """What the daemon itself says that it shows, newest last."""
        session.run("dunstctl", "close-all")
        history = json.loads(session.run("dunstctl", "history"))["data"][0]
        return [(each["summary"]["data"], each["body"]["data"]) for each in reversed(history)]

    def click(self, session):
        """A click on the notification's window with a real pointer."""
        deadline = time.monotonic() + 10
        while not session.run("xdotool", "search", "--onlyvisible", "--class", "dunst", check=False).strip():
            self.assertLess(time.monotonic(), deadline, "nothing popped up")
            time.sleep(0.05)
        session.run("xdotool", "mousemove", "100", "70", "click", "1")

    def test_shows_and_hears_clicks_across_restarts_of_the_daemon(self):
        session = self.open_session()
        session.start_display()
        probe = session.start(f"{PROGRAMS}/notification_probe")
        probe.wait_for("unavailable idle")
        probe.write("Too early\t")
        probe.wait_for("shown 0")

        daemon = self.start_daemon(session)
        probe.wait_for("available running")
        probe.write("Dawnly reminder\tWater & <b>plants</b> – 水")
        number = int(probe.wait_for(r"shown (\d+)").group(1))
        self.assertGreater(number, 0)
        self.click(session)
        self.assertEqual(int(probe.wait_for(r"clicked (\d+)").group(1)), number)
        self.assertEqual(self.displayed(session),
                         [("Dawnly reminder", "Water &amp; &lt;b&gt;plants&lt;/b&gt; – 水")])

        daemon.stop()
        probe.wait_for("unavailable idle")
        self.start_daemon(session)
        probe.wait_for("available running")
        probe.write("Again\tand clicked")
        again = int(probe.wait_for(r"shown (\d+)").group(1))
        self.click(session)
        self.assertEqual(int(probe.wait_for(r"clicked (\d+)").group(1)), again)

    def test_reminders_pop_up_in_time_and_tell_who_was_clicked(self):
        session = self.open_session()
        session.start_display()
        probe = session.start(f"{PROGRAMS}/reminder_probe")
        probe.write("status")
        probe.wait_for("denied")
        daemon = self.start_daemon(session)
        deadline = time.monotonic() + 10
        while probe.write("status") or probe.wait_for("denied|allowed").group() == "denied":
            self.assertLess(time.monotonic(), deadline, "nobody noticed the daemon")
            time.sleep(0.05)
        probe.write("todo-1 2 https://example.org/a")
        probe.wait_for("pending 1")
        self.click(session)
        probe.wait_for("clicked todo-1 joinURL=https://example.org/a")

        # Set before a restart of the program, due without a daemon, shown when both are back.
        probe.write("meeting-2 1 https://example.org/b")
        probe.wait_for("pending 1")
        probe.process.stdin.close()
        probe.process.wait(10)
        daemon.stop()
        time.sleep(1.5)
        probe = session.start(f"{PROGRAMS}/reminder_probe")
        self.start_daemon(session)
        self.click(session)
        probe.wait_for("clicked meeting-2 joinURL=https://example.org/b")
        self.assertEqual(self.displayed(session), [("Reminder", "meeting-2")])

    def test_starts_the_daemon_when_the_bus_can(self):
        session = self.open_session(["org.knopwob.dunst"])
        session.start_display()
        # What the bus starts gets the display from the bus's own environment.
        session.run("dbus-update-activation-environment", "DISPLAY")
        probe = session.start(f"{PROGRAMS}/notification_probe")
        probe.wait_for("available idle")
        probe.write("Hello\tworld")
        self.assertGreater(int(probe.wait_for(r"shown (\d+)").group(1)), 0)
        self.assertEqual(self.displayed(session), [("Hello", "world")])

    def test_escapes_for_a_service_that_does_not_say_what_it_can(self):
        session = self.open_session()
        stub = session.start("/usr/bin/python3", os.path.join(os.path.dirname(__file__), "notification_stub.py"))
        probe = session.start(f"{PROGRAMS}/notification_probe")
        probe.wait_for("available running")
        probe.write("Dawnly reminder\tWater <img src='https://example.org/a'>")
        probe.wait_for("shown 1")
        self.assertNotIn("<", stub.wait_for("body (.*)").group(1))

    def test_does_without_a_session_bus(self):
        session = self.open_session()
        session.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={session.home}/nowhere"
        probe = session.start(f"{PROGRAMS}/notification_probe")
        probe.wait_for("unavailable idle")
        probe.write("Nobody\tlistens")
        probe.wait_for("shown 0")
        self.assertIsNone(probe.process.poll())


if __name__ == "__main__":
    unittest.main()
