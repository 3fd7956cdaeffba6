"""A reminder on a todo, from the file that another device writes to the notification and the click on it."""

import json
import os
import time
import unittest

from desktop import AWAY, REFERENCE_DATE, Desktop


class Reminder(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop(window_manager=True)
        self.addCleanup(self.desktop.close)

    def notification(self):
        """The window of a notification on screen, or nothing."""
        return self.desktop.ask("xdotool", "search", "--onlyvisible", "--class", "Dunst").split()[:1]

    def remind(self, at):
        path = self.desktop.briefings + "/todos.json"
        with open(path) as file:
            todos = json.load(file)
        todos["todos"][0]["remindAt"] = at - REFERENCE_DATE
        with open(path + ".new", "w") as file:
            json.dump(todos, file)
        os.rename(path + ".new", path)

    def test_a_reminder_pops_up_and_its_click_unfolds_the_panel(self):
        d = self.desktop
        d.write_briefing(time.strftime("%Y-%m-%d.md"), "# Morning\n### Action Items\n- [ ] Call the bank\n")
        d.start("dunst", "-conf", "/dev/null")
        d.start_program()
        d.wait_for(lambda: os.path.exists(d.briefings + "/todos.json"), "the todo")
        time.sleep(1)
        # Reminders come due at the start of a minute; a few seconds are left for the program to see this one.
        due = (int(time.time()) + 8) // 60 * 60 + 60
        self.remind(due)
        self.assertEqual(self.notification(), [])
        d.wait_for(self.notification, "the reminder", 80)
        self.assertGreaterEqual(time.time(), due)
        self.assertLess(time.time(), due + 5)

        self.assertFalse(d.report()["expanded"])
        window = self.notification()[0]
        d.run("xdotool", "mousemove", "--window", window, "20", "20", "click", "2")
        d.wait_for(lambda: d.report()["expanded"], "the panel to unfold")
        d.move(*AWAY)
        time.sleep(1)
        self.assertTrue(d.report()["expanded"])  # stays open for a while
        time.sleep(5)
        d.move(AWAY[0] + 20, AWAY[1])  # folds when the pointer moves elsewhere
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold")


if __name__ == "__main__":
    unittest.main(verbosity=2)
