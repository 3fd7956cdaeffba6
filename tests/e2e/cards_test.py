"""What a user does with a card, by a real pointer and keyboard, judged by the files that it changes."""

import os
import time
import unittest

from desktop import BRIEF_RIGHT, COLUMNS_TOP, PANEL_RIGHT, WIDTH, Desktop

CARD_LEFT = (WIDTH - 720) // 2 + 20 + 12
CARD_Y = tuple(COLUMNS_TOP + 56 + 41 * card for card in range(5))
HAND_X = CARD_LEFT + 150
TODOS_X = BRIEF_RIGHT + 120
FOCUS = (10, 132, 255)
BRIEFING = """# Morning
### Schedule
- **Alpha** report
- **Beta** call
- **Gamma** lunch with [the plan](https://example.org/a?b=1&c=2) and [a file](file:///etc/passwd)
- **Delta** review
- **Epsilon** walk
"""


class Cards(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop(window_manager=True)
        self.addCleanup(self.desktop.close)
        # Room for a menu below the first card.
        self.desktop.write_briefing("2026-11-22.md", BRIEFING + "".join("### S%d\n- Card\n" % i for i in range(3)))
        self.desktop.catch_addresses()
        self.desktop.start_program()
        self.desktop.unfold()

    def todos(self):
        return self.desktop.read("todos.json").get("todos", [])

    def expect_flags(self, prio=(), cleared=(), hidden=()):
        """That the flags come to this, and that the agent is told the same."""
        self.desktop.await_flags(prio=prio, cleared=cleared, hidden=hidden)
        names = {"alpha-report": "Alpha report", "beta-call": "Beta call"}
        feedback = self.desktop.read("feedback.json")
        self.assertEqual([entry["text"] for entry in feedback["prio"]], [names[key] for key in prio])
        self.assertEqual(feedback["cleared"], [names[key] for key in cleared])

    def swipe(self, card, distance):
        start = (HAND_X, CARD_Y[card])
        self.desktop.drag(start, (start[0] + distance, start[1] + 2))
        time.sleep(0.6)

    def hold(self, card):
        self.desktop.run("xdotool", "mousemove", str(HAND_X), str(CARD_Y[card]), "mousedown", "1")
        time.sleep(0.7)

    def menu_row(self, card, row):
        """A row of the reminder menu below a card."""
        return HAND_X, CARD_Y[card] + 63 + 28 * row

    def focus_card(self, card):
        """Goes to a card with the Tab key; a ring shows when it has arrived."""
        for _ in range(20):
            self.desktop.key("Tab")
            time.sleep(0.1)
            pixel = self.desktop.screenshot().at(CARD_LEFT + 1, CARD_Y[card])
            if all(abs(a - b) < 12 for a, b in zip(pixel, FOCUS)):
                return
        self.fail("the keyboard does not reach the card")

    def click_into_panel(self):
        self.desktop.click(WIDTH // 2, 60)
        time.sleep(0.2)

    def test_swipes_flag_clear_and_hide_and_are_taken_back(self):
        self.swipe(0, 70)  # not far enough
        time.sleep(0.3)
        self.assertFalse(os.path.exists(self.desktop.briefings + "/itemflags.json"))
        self.swipe(0, 72)
        self.expect_flags(prio=["alpha-report"])
        self.swipe(0, -72)
        self.expect_flags(cleared=["alpha-report"])
        self.assertEqual(self.desktop.screenshot().card_count(), 5)
        self.swipe(0, -72)
        self.expect_flags(cleared=["alpha-report"], hidden=["alpha-report"])
        self.desktop.wait_for(lambda: self.desktop.screenshot().card_count() == 4, "the card to go")
        for flags in ({"cleared": ["alpha-report"]}, {"prio": ["alpha-report"]}, {}):
            self.desktop.key("ctrl+z")
            self.expect_flags(**flags)
        self.desktop.wait_for(lambda: self.desktop.screenshot().card_count() == 5, "the card to come back")

    def test_a_second_button_ends_a_drag(self):
        d = self.desktop
        d.drag((HAND_X, CARD_Y[1]), (HAND_X + 80, CARD_Y[1]), release=False)
        d.run("xdotool", "click", "3", "mousemove_relative", "9", "0")
        time.sleep(0.1)
        d.run("xdotool", "mouseup", "1")
        time.sleep(0.5)
        self.assertFalse(os.path.exists(d.briefings + "/itemflags.json"))
        self.swipe(0, 80)  # hits the card that it is made on
        self.expect_flags(prio=["alpha-report"])

    def test_a_vertical_drag_does_nothing(self):
        self.desktop.drag((HAND_X, CARD_Y[0]), (HAND_X + 5, CARD_Y[3]))
        self.desktop.drag((HAND_X, CARD_Y[0]), (HAND_X + 20, CARD_Y[0] + 40), hold=0.1)
        time.sleep(0.7)  # as long as a menu would take
        self.desktop.key("Return")
        time.sleep(0.5)
        self.assertEqual(self.todos(), [])
        self.assertFalse(os.path.exists(self.desktop.briefings + "/itemflags.json"))

    def test_holding_a_card_offers_reminders(self):
        d = self.desktop
        self.hold(0)
        d.move(*self.menu_row(0, 0))
        time.sleep(0.05)
        d.move(*self.menu_row(0, 1))
        time.sleep(0.1)
        before = time.time()
        d.run("xdotool", "mouseup", "1")
        d.wait_for(lambda: self.todos() and "remindAt" in self.todos()[0], "the reminder")
        todo = self.todos()[0]
        self.assertEqual((todo["text"], todo["sourceItemKey"], todo["source"]), ("Alpha report", "alpha-report", "item"))
        self.assertAlmostEqual(todo["remindAt"] + 978307200, before + 3 * 3600, delta=2)

        # A row that the pointer has left is not chosen, however quickly it is back where it began.
        self.hold(3)
        d.move(HAND_X + 1, CARD_Y[3])
        d.move(*self.menu_row(3, 0))
        d.move(*self.menu_row(3, 1))
        d.run("xdotool", "mousemove", str(HAND_X), str(CARD_Y[3]), "mouseup", "1")
        time.sleep(0.3)
        d.key("Escape")
        self.assertEqual(len(self.todos()), 1)

        # Let go where it was held, the menu stays for a click; a click beside it closes it.
        self.hold(1)
        d.run("xdotool", "mouseup", "1")
        time.sleep(0.3)
        d.click(*self.menu_row(1, 0))
        d.wait_for(lambda: len(self.todos()) == 2, "the todo of the second card")
        self.hold(2)
        d.run("xdotool", "mouseup", "1")
        d.click(TODOS_X, 250)
        time.sleep(0.2)
        d.click(*self.menu_row(2, 0))
        time.sleep(0.5)
        self.assertEqual(len(self.todos()), 2)

    def test_the_sheet_is_about_the_card_that_asked_for_it(self):
        d = self.desktop
        self.click_into_panel()
        self.focus_card(1)
        place = ("mousemove", str(HAND_X), str(CARD_Y[0]))
        d.key("r")
        time.sleep(0.3)
        # Another card's menu opens before the sheet does.
        d.run("xdotool", "key", "Up", "Return", *place, "click", "3")
        time.sleep(0.6)
        d.key("Down", "Down", "Return")
        d.wait_for(self.todos, "the todo")
        self.assertEqual([(todo["text"], "remindAt" in todo) for todo in self.todos()], [("Alpha report", False)])
        # Another card is held, and its menu would open after the sheet did.
        self.focus_card(1)
        d.key("r")
        time.sleep(0.3)
        d.run("xdotool", "key", "Up", "Return", *place, "mousedown", "1", "sleep", "1", "mouseup", "1", "key", "Return")
        d.wait_for(lambda: len(self.todos()) == 2, "the second todo", 3)
        self.assertEqual([todo["text"] for todo in self.todos() if "remindAt" in todo], ["Beta call"])

    def test_the_menu_copies_and_adds(self):
        d = self.desktop
        self.swipe(1, 80)
        d.run("xdotool", "mousemove", str(HAND_X), str(CARD_Y[1]), "mousedown", "3")
        time.sleep(0.3)
        d.key("Down", "Return")  # the button is still down
        d.run("xdotool", "mouseup", "3")
        time.sleep(0.3)
        self.assertEqual(d.ask("timeout", "5", "xclip", "-o", "-selection", "clipboard"), "Beta call")
        d.click(HAND_X, CARD_Y[1], button=3)
        time.sleep(0.3)
        d.key("Down", "Down", "Return")
        d.wait_for(self.todos, "the todo")
        todo = self.todos()[0]
        self.assertEqual((todo["text"], todo["sourceItemKey"], todo["prio"]), ("Beta call", "beta-call", True))
        self.assertNotIn("remindAt", todo)

    def test_a_carried_card_may_go_from_the_briefing(self):
        d = self.desktop
        d.drag((HAND_X, CARD_Y[3]), (TODOS_X, 160), steps=30, release=False)
        d.write_briefing("2026-11-22.md", "# Later\n### Other\n- Something else\n")
        time.sleep(1.5)  # for the new briefing; the carried picture hides its card
        for x in (TODOS_X + 4, TODOS_X + 8):
            d.move(x, 162)
            time.sleep(0.2)
        d.run("xdotool", "mouseup", "1")
        d.wait_for(self.todos, "the todo")
        self.assertEqual(self.todos()[0]["text"], "Delta review")
        self.assertIsNone(d.program.poll())

    def test_a_menu_that_another_replaces_does_not_keep_the_panel_open(self):
        d = self.desktop
        self.click_into_panel()
        self.focus_card(0)
        d.run("xdotool", "mousemove", str(HAND_X), str(CARD_Y[1]), "mousedown", "1", "key", "m")
        time.sleep(0.7)  # until holding opens the other
        d.run("xdotool", "mouseup", "1")
        time.sleep(0.3)
        d.key("Escape")
        time.sleep(0.3)
        self.assertTrue(d.report()["expanded"])
        d.run("xdotool", "mousemove", "100", "700", "sleep", "0.1", "mousemove", "110", "700")
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold", 3)

    def test_a_card_that_goes_takes_its_drag_with_it(self):
        d = self.desktop
        d.drag((HAND_X, CARD_Y[0]), (HAND_X + 35, CARD_Y[0]), release=False)
        d.write_briefing("2026-11-22.md", BRIEFING.replace("- **Alpha** report\n", ""))
        d.wait_for(lambda: d.screenshot().card_count() == 4, "the card to go")
        d.run("xdotool", "mouseup", "1")
        time.sleep(0.3)
        self.swipe(0, 72)
        self.expect_flags(prio=["beta-call"])

    def test_the_panels_own_menu_quits_the_program(self):
        d = self.desktop
        d.click(WIDTH // 2, 60, button=3)  # beside the cards
        time.sleep(0.5)
        self.assertIsNone(d.program.poll())
        d.key("Up", "Return")  # the last entry
        d.wait_for(lambda: d.program.poll() is not None, "the program to end")
        self.assertEqual(d.program.returncode, 0)

    def test_an_introductions_links_open(self):
        d = self.desktop
        d.write_briefing("2026-11-22.md", "# Morning\n### Plan\nSee [this page](https://example.org/intro)\n- Card\n")
        d.wait_for(lambda: d.screenshot().card_count() == 1, "the other briefing")
        time.sleep(0.5)
        picture = d.screenshot()
        link = next((x, y) for y in range(CARD_Y[0] - 30, CARD_Y[0] + 30) for x in range(CARD_LEFT, BRIEF_RIGHT - 40)
                    if picture.at(x, y)[2] > picture.at(x, y)[0] + 100)

        d.click(link[0] + 3, link[1] + 3)
        d.wait_for(d.opened, "the browser")
        self.click_into_panel()
        for _ in range(12):
            d.key("Tab", "o")
        d.wait_for(lambda: len(d.opened()) > 1, "the browser by keyboard")
        self.assertEqual(set(d.opened()), {"https://example.org/intro"})

    def test_only_safe_links_open(self):
        d = self.desktop
        x = next(x for x in range(HAND_X - 60, PANEL_RIGHT - 300)
                 if d.screenshot().at(x, CARD_Y[2] - 2)[2] > d.screenshot().at(x, CARD_Y[2] - 2)[0] + 100)
        d.click(x + 3, CARD_Y[2])
        d.wait_for(d.opened, "the browser")
        self.click_into_panel()
        self.focus_card(2)
        d.key("o")
        d.wait_for(lambda: len(d.opened()) == 2, "the browser again")
        for x in range(CARD_LEFT + 20, BRIEF_RIGHT - 40, 12):  # whatever else is in the card
            d.click(x, CARD_Y[2])
        time.sleep(0.5)
        self.assertEqual(set(d.opened()), {"https://example.org/a?b=1&c=2"})


if __name__ == "__main__":
    unittest.main(verbosity=2)
