"""The panel as a screen reader finds it: names, roles, states and values, what its actions do to the files, and what it
says of changes. Then the same windows by keyboard, with every stop of the Tab key read aloud."""

import os
import time
import unittest

from desktop import REFERENCE_DATE, Desktop, todo
from screen_reader import ScreenReader

BRIEFING = """# Morning
### Schedule
Two things before *noon*.
- **Alpha** report
- 10:00 **Beta** call · [Join](https://meet.google.com/abc-defg-hij)
### Reading
- Gamma
"""
CONTROLS = {"push button", "check box", "radio button", "list item", "text", "menu item", "slider", "spin button",
            "page tab", "combo box"}


class Access(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop(window_manager=True)
        cls.addClassCleanup(cls.desktop.close)
        cls.reader = ScreenReader(cls.desktop)

    def setUp(self):
        d = self.desktop
        for name in os.listdir(d.briefings):
            os.remove(os.path.join(d.briefings, name))
        d.write_briefing(time.strftime("%Y-%m-%d.md"), BRIEFING)
        tomorrow = time.time() - REFERENCE_DATE + 86400
        d.write_todos(todo("Milk"), todo("Bread", prio=True, remindAt=tomorrow), todo("Old", done=True))
        program = d.start_program()
        self.addCleanup(self.end, program)
        d.unfold()

    @staticmethod
    def end(program):
        program.terminate()
        program.wait(10)

    def done(self):
        return {entry["text"]: entry["done"] for entry in self.desktop.read("todos.json")["todos"]}

    def description(self, role, name):
        return self.reader.find(role, name).description

    def expect_names(self):
        """Whatever can be used has a name and a role."""
        nodes = self.reader.nodes()
        for node in nodes:
            if node.role in CONTROLS or "FOCUSABLE" in node.states:
                self.assertTrue(node.name.strip(), "without a name: %s in\n%s" % (node.role, self.reader.text()))
            self.assertNotEqual(node.role, "unknown", node)
            self.assertNotIn("<", node.name)  # no markup
        return nodes

    def test_the_walk(self):
        nodes = self.expect_names()
        said = [(node.role, node.name, node.description) for node in nodes[2:]]
        today = time.strftime("%A ")
        self.assertEqual([(role, name) for role, name, _ in said[:2]][0], ("heading", "Morning"))
        self.assertTrue(said[1][1].startswith(today), said[1])
        for expected in [("push button", "Settings", ""), ("push button", "Schedule, 2 cards", "expanded"),
                         ("label", "Two things before noon.", ""), ("list item", "Alpha report", ""),
                         ("list item", "10:00 Beta call", ""), ("push button", "Join 10:00 Beta call", ""),
                         ("push button", "Reading, 1 card", "collapsed"), ("text", "Add a todo…", ""),
                         ("check box", "Milk", ""), ("label", "1 done", "")]:
            self.assertIn(expected, said)
        self.assertFalse([entry for entry in said if entry[1] == "Gamma"], "in a section that is folded")
        self.assertTrue(self.description("check box", "Bread").startswith("priority, Reminder: "))
        checked = {node.name: "CHECKED" in node.states for node in nodes if node.role == "check box"}
        self.assertEqual(checked, {"Milk": False, "Bread": False, "Old": True})
        self.assertIn("EDITABLE", self.reader.find("text", "Add").states)

    def test_its_actions_flag_tick_and_unfold(self):
        reader = self.reader
        reader.do("Increase", "list item", "Alpha")
        heard = reader.listen(1)
        self.desktop.await_flags(prio=["alpha-report"])
        self.assertEqual(self.description("list item", "Alpha"), "priority")
        self.assertIn(("accessible-description", 0, "Alpha report", "priority"), heard)
        # What a screen reader speaks of itself: an alert that comes up.
        self.assertIn(("showing", 1, "Marked as a priority", ""), heard)
        reader.do("Decrease", "list item", "Alpha")
        self.desktop.await_flags(cleared=["alpha-report"])
        reader.listen(0.7)
        self.assertEqual(self.description("list item", "Alpha"), "cleared")
        reader.do("Decrease", "list item", "Alpha")
        self.assertIn(("showing", 1, "Removed", ""), reader.listen(1))
        self.desktop.await_flags(cleared=["alpha-report"], hidden=["alpha-report"])
        reader.do("Press", "push button", "Show the hidden card")
        self.desktop.await_flags(cleared=["alpha-report"])

        reader.do("Toggle", "check box", "Milk")
        heard = reader.listen(1)
        self.assertTrue(self.done()["Milk"])
        self.assertIn("CHECKED", reader.find("check box", "Milk").states)
        self.assertIn(("checked", 1, "Milk", ""), heard)
        reader.do("Press", "push button", "Reminder: ")  # the bell
        self.assertIn(("showing", 1, "Reminder cleared", ""), reader.listen(1))
        self.assertEqual(self.description("check box", "Bread"), "priority")

        reader.do("Press", "push button", "Reading")
        reader.listen(0.9)
        self.assertEqual((self.description("push button", "Reading"), self.description("push button", "Schedule")),
                         ("expanded", "collapsed"))
        reader.find("list item", "Gamma")

    def test_menus_and_the_sheet(self):
        reader, d = self.reader, self.desktop
        d.click(640, 60)  # for the keyboard
        reader.do("Press", "list item", "Alpha")
        reader.listen(0.4)
        self.expect_names()
        reader.find("popup menu", "Card")
        reader.do("Press", "menu item", "Add to Todos")
        self.assertIn(("showing", 1, "Added to the todos", ""), reader.listen(1))
        self.assertIn("Alpha report", self.done())

        d.key("F6", "Down", "r")
        heard = reader.listen(0.8)
        self.assertIn(("focused", 1, "In 1 hour", ""), heard)
        d.key("Down", "Down", "Down")
        reader.listen(0.3)
        self.assertIn("FOCUSED", reader.find("menu item", "Custom…").states)
        d.key("Return")
        reader.listen(0.9)
        nodes = self.expect_names()
        self.assertIn("dialog", [node.role for node in nodes])
        for part, low, high in (("Day", 1, 31), ("Month", 1, 12), ("Year", 2020, 2200), ("Hour", 0, 23),
                                ("Minute", 0, 59)):
            value = reader.find("spin button", part).value
            self.assertTrue(low <= value <= high, (part, value))
        stops = self.stops(12)  # none of which is outside the sheet
        self.assertEqual([stop.split(":")[0] for stop in stops],
                         ["Month", "Year", "Hour", "Minute", "Repeat", "Clear", "Cancel", "Set Reminder", "Day"])
        year = reader.find("spin button", "Year").value
        reader.do("Increase", "spin button", "Year")
        reader.listen(0.3)
        self.assertEqual(reader.find("spin button", "Year").value, year + 1)
        reader.do("Press", "radio button", "Weekly")
        reader.listen(0.3)
        self.assertIn("CHECKED", reader.find("radio button", "Weekly").states)
        reader.do("Press", "push button", "Set Reminder")
        self.assertIn(("showing", 1, "Reminder set", ""), reader.listen(1))
        self.assertIn("weekly", [entry.get("remindRepeat") for entry in self.desktop.read("todos.json")["todos"]])

    def stops(self, count):
        """What is read aloud at each stop of the Tab key, until the first comes again."""
        heard = []
        for _ in range(count):
            self.reader.listen(0)
            self.desktop.key("Tab")
            names, end = [], time.monotonic() + 2
            while not names and time.monotonic() < end:
                names = [name for what, on, name, _ in self.reader.listen(0.02) if what == "focused" and on]
            self.assertTrue(names and names[-1].strip(), "silence after %r" % heard)
            if heard and names[-1] == heard[0]:
                return heard
            heard.append(names[-1])
        return heard

    def test_every_stop_of_the_tab_key_is_read(self):
        self.desktop.click(640, 60)
        self.reader.listen(0.3)
        stops = self.stops(20)
        for name in ("Settings", "Schedule, 2 cards", "Alpha report", "10:00 Beta call", "Join 10:00 Beta call",
                     "Reading, 1 card", "Add a todo…", "Bread"):
            self.assertIn(name, stops)

    def test_the_settings(self):
        reader = self.reader
        reader.do("Press", "push button", "Settings")
        self.desktop.wait_for(lambda: any(node.role == "page tab" for node in reader.nodes()), "the settings")
        for page in ("Appearance", "General", "Briefings", "AI Setup"):
            reader.do("Press", "page tab", page)
            reader.listen(0.5)
            nodes = self.expect_names()
            self.assertIn("SELECTED", reader.find("page tab", page).states)
            for slider in (node for node in nodes if node.role == "slider"):
                self.assertIsNotNone(slider.value, slider)
            stops = self.stops(40)
            self.assertIn(page, stops)
        reader.do("Press", "page tab", "Appearance")
        reader.listen(0.5)
        reader.do("Press", "radio button", "Haze")
        reader.listen(0.5)
        self.assertEqual(self.desktop.defaults()["notchTheme"], "haze")
        self.assertIn("CHECKED", reader.find("radio button", "Haze").states)


if __name__ == "__main__":
    unittest.main(verbosity=2)
