"""What only the pointer did in the tests of cards and todos, by keyboard alone: days, sections, menus, links between the
columns, settings. Once the hotkey has opened the panel, the pointer stays where it is."""

import datetime
import time
import unittest

from desktop import AWAY, COLUMNS_TOP, REFERENCE_DATE, TODO_LEFT, Desktop, todo

TODAY = "# Today\n### Schedule\n- Alpha\n- Beta\n### Reading\n- Gamma\n"
ROW = TODO_LEFT + 7, COLUMNS_TOP + 90  # where the first todo begins


class Keyboard(unittest.TestCase):
    def setUp(self):
        self.desktop = d = Desktop(window_manager=True)
        self.addCleanup(d.close)
        d.catch_addresses()
        d.write_briefing(time.strftime("%Y-%m-%d.md"), TODAY)
        yesterday = time.strftime("%Y-%m-%d.md", time.localtime(time.time() - 86400))
        d.write_briefing(yesterday, "# Older\n### Schedule\n- Delta\n")
        d.write_todos(todo("Dentist"))
        d.start_program()
        self.open_panel()

    def open_panel(self):
        d = self.desktop
        d.move(*AWAY)
        d.key("ctrl+space")
        d.wait_for(lambda: d.report()["expanded"], "the hotkey to open the panel")
        time.sleep(0.9)

    def press(self, *keys):
        for key in keys:
            self.desktop.key(key)
            time.sleep(0.05)
        time.sleep(0.4)

    def to_first_card(self):
        """From the field for todos: over to the briefing, past its first section's header."""
        self.press("F6", "Down")

    def test_cards_from_one_to_the_next(self):
        self.to_first_card()
        self.press("shift+Right")
        self.desktop.await_flags(prio=["alpha"])
        self.press("Down", "shift+Left")
        self.desktop.await_flags(prio=["alpha"], cleared=["beta"])
        # A card that goes hands the keyboard on, here to the next section.
        self.press("shift+Left")
        self.desktop.await_flags(prio=["alpha"], cleared=["beta"], hidden=["beta"])
        self.press("Return", "Down", "shift+Right")
        self.desktop.await_flags(prio=["alpha", "gamma"], cleared=["beta"], hidden=["beta"])
        # Below the last card is what brings the hidden ones back.
        self.press("Down", "space")
        self.desktop.await_flags(prio=["alpha", "gamma"], cleared=["beta"])

    def test_days(self):
        self.press("F6", "shift+Left", "ctrl+Left", "Left", "shift+Right")  # with another key held they turn no page
        self.press("F6", "F6", "Down", "shift+Right")  # over to the todos and back
        self.desktop.await_flags(prio=["delta"])
        self.press("Right")
        self.press("F6", "F6", "Down", "shift+Right")
        self.desktop.await_flags(prio=["alpha", "delta"])

    def test_a_card_becomes_a_todo_with_a_reminder(self):
        d = self.desktop
        self.to_first_card()
        self.press("shift+F10", "Down", "Return")
        d.wait_for(lambda: "Alpha" in d.todos(), "the todo", 3)
        self.press("r", "Return")
        d.wait_for(lambda: any("remindAt" in todo for todo in self.desktop.read("todos.json")["todos"]), "the reminder", 3)
        self.press("r", "Escape")  # the menu alone
        self.assertTrue(d.report()["expanded"])

    def test_the_ring_is_back_after_an_edit(self):
        d = self.desktop

        def ring():
            """The left edge of the blue ring around the only todo, or nothing."""
            screen = d.screenshot()
            colours = {x: screen.at(x, ROW[1]) for x in range(ROW[0] - 8, ROW[0] + 8)}
            return [x for x, (red, _, blue) in colours.items() if blue > 150 > 100 > red]

        self.press("Down")
        around = ring()
        self.assertTrue(around)
        for end in ("Return", "Escape", "Tab"):
            self.press("Return")
            self.assertNotEqual(ring(), around)
            self.press(end)
            self.assertEqual(ring(), around, end)

    def test_what_asks_the_user_keeps_the_keyboard(self):
        d = self.desktop
        self.to_first_card()
        for key in ("F6", "Menu"):  # over to the other column, and for the panel's menu
            self.press("m", key, "Down", "Return")
            d.wait_for(lambda: "Alpha" in d.todos(), "the todo", 3)
        self.press("m", "shift+Tab", "shift+Right")  # closed, and the keyboard is on the card again
        self.desktop.await_flags(prio=["alpha"])
        self.press("r", "Up", "Return")
        time.sleep(0.3)
        self.press("F6", "shift+F10", "Menu")
        d.key(*"281220270930", "Right", "Right", "Right")  # the digits move on by themselves
        d.key("Tab", "Right", "Right", "Return")

        def reminder():
            alpha = next(todo for todo in d.read("todos.json")["todos"] if todo["text"] == "Alpha")
            return alpha.get("remindAt"), alpha.get("remindRepeat")

        moment = datetime.datetime(2027, 12, 28, 9, 30).timestamp() - REFERENCE_DATE
        d.await_value(reminder, (moment, "weekly"), "the reminder")
        self.press("r", "Up", "Return")
        time.sleep(0.3)
        self.press("Escape")  # the sheet alone
        self.assertTrue(d.report()["expanded"])
        self.assertEqual(sorted(d.todos()), ["Alpha", "Dentist"])
        self.assertFalse(d.opened())

    def test_a_missed_priority_hands_the_keyboard_on(self):
        d = self.desktop
        self.to_first_card()
        self.press("shift+Right", "Down", "shift+Right")
        self.desktop.await_flags(prio=["alpha", "beta"])
        d.write_briefing(time.strftime("%Y-%m-%d.md"), "# Today\n### Reading\n- Gamma\n")
        time.sleep(1.5)
        self.press("F6", "F6", "Down", "Down", "Return", "Down")  # past the only card, into the section below it
        self.press("shift+Right")
        self.desktop.await_flags(prio=["beta"])
        self.press("shift+Left")
        self.desktop.await_flags(cleared=["beta"])
        d.key(*"Milk", "Return")  # what follows is the field for todos
        d.wait_for(lambda: "Milk" in d.todos(), "the todo", 3)

    def test_the_panels_menu_and_the_settings(self):
        d = self.desktop
        self.press("F6", "Up", "shift+F10", "Return")  # on a button of the header
        d.wait_for(d.opened, "the folder to open")
        self.assertIn(d.briefings, d.opened()[0])
        self.press("Escape")
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold")
        time.sleep(0.7)
        self.open_panel()
        panels = set(d.search("Dawnly"))
        self.press("F6", "Up", "Return")  # the gear is above the first section
        d.wait_for(lambda: d.focused_window() in set(d.search("Dawnly")) - panels, "the settings")
        time.sleep(0.5)
        # The second page, then past the other entries to its first control.
        self.press("Tab", "Tab", "Return")
        self.press(*["Tab"] * 5)
        before = d.defaults()
        for _ in range(8):
            self.press("space")
            if d.defaults() != before:
                break
            self.press("Tab")
        self.assertNotEqual(d.defaults(), before, "a switch turns")
        self.press("ctrl+w")
        d.wait_for(lambda: not set(d.search("Dawnly")) - panels, "the window to close")


if __name__ == "__main__":
    unittest.main(verbosity=2)
