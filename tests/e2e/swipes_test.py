"""Two fingers on a touchpad swipe cards and scroll the column; a wheel only ever scrolls."""

import time
import unittest

from desktop import AWAY, BRIEF_RIGHT, COLUMNS_TOP, HEADER_Y, TODO_LEFT
from input_devices import HORIZONTAL, VERTICAL, DesktopWithDevices

CARD_COUNT = 40  # more than the panel has room for
CARD = (BRIEF_RIGHT - 120, COLUMNS_TOP + 56)  # the first one
TODO = (TODO_LEFT + 150, COLUMNS_TOP + 91)
TITLE = (BRIEF_RIGHT - 120, HEADER_Y)
SCROLL_METHODS = "libinput Scroll Methods Available"  # two fingers, edge, button
NATURAL_SCROLLING = "libinput Natural Scrolling Enabled"


class Swipes(unittest.TestCase):
    def setUp(self):
        self.desktop = d = DesktopWithDevices()
        self.addCleanup(d.close)
        cards = "".join("- Card number %d\n" % number for number in range(1, CARD_COUNT + 1))
        d.write_briefing("2026-11-22.md", "# Morning\n### Schedule\n" + cards + "### Action Items\n- [ ] Send the deck\n")
        d.start_program()
        d.wait_for(lambda: self.desktop.read("feedback.json").get("untouched"), "the first feedback")
        d.unfold()
        d.move(*CARD)

    def flags(self):
        """What both files say of the cards: the priorities and the cleared cards, and which are hidden. None while the
        two do not agree."""
        flags, feedback = self.desktop.read("itemflags.json"), self.desktop.read("feedback.json")
        prio, cleared = sorted(flags.get("prio", {}).values()), sorted(flags.get("cleared", {}).values())
        if sorted(entry["text"] for entry in feedback.get("prio", [])) != prio:
            return None
        if sorted(feedback.get("cleared", [])) != cleared:
            return None
        return prio, cleared, flags.get("hidden", [])

    def expect(self, what, prio=(), cleared=(), hidden=()):
        self.desktop.await_value(self.flags, (list(prio), list(cleared), list(hidden)), what)
        time.sleep(0.5)  # the card springs back

    def expect_nothing_flagged(self, what):
        time.sleep(0.7)
        self.assertEqual(self.flags(), ([], [], []), what)

    def fingers(self, right, down=0.0, steps=12, leave=True):
        """Two fingers move on the touchpad, the content with them, and then leave it."""
        for _ in range(steps):
            self.desktop.touchpad.scroll(-right / steps, -down / steps)
            time.sleep(0.008)
        if leave:
            self.desktop.touchpad.scroll(0, 0)

    def cards(self):
        """What the column's cards look like, without the one under the pointer."""
        return self.desktop.screenshot().column(BRIEF_RIGHT - 300, 200, 600)

    def test_swipes_flag_clear_and_remove_and_control_z_takes_each_back(self):
        card, one = "Card number 1", "card-number-1"
        self.desktop.click(*TITLE)  # the keyboard comes along
        self.desktop.move(*CARD)
        time.sleep(0.5)
        self.fingers(6.5)
        self.expect("the priority", prio=[card])
        self.fingers(-6.5)
        self.expect("the cleared card", cleared=[card])
        self.fingers(-6.5)
        self.expect("the removed card", cleared=[card], hidden=[one])
        self.desktop.key("ctrl+z")
        self.expect("the card to come back", cleared=[card])
        self.desktop.key("super+z")
        self.expect("the priority to come back", prio=[card])
        self.desktop.key("ctrl+shift+z")
        self.expect("Shift to keep the priority", prio=[card])
        self.desktop.key("ctrl+z")
        self.expect("the untouched card")
        self.desktop.key("ctrl+z")
        self.expect_nothing_flagged("nothing is left to take back")

    def test_a_short_or_slanting_swipe_changes_nothing(self):
        before = self.cards()
        self.fingers(4.0)
        self.fingers(-4.5, 1.0)
        self.fingers(2.0, 2.2)
        self.expect_nothing_flagged("short swipes")
        self.assertTrue(self.cards() == before, "the column moved with a swipe")

    def test_up_and_down_scrolls(self):
        before = self.cards()
        self.fingers(3.0, -14.0)
        self.expect_nothing_flagged("scrolling")
        self.assertTrue(self.cards() != before, "the column did not scroll")
        self.fingers(0.0, 40.0)
        self.desktop.wait_for(lambda: self.cards() == before, "the column to scroll back", 3)
        self.expect_nothing_flagged("scrolling back")

    def test_a_wheel_scrolls_over_a_card_and_flags_nothing(self):
        d = self.desktop
        before = self.cards()
        for _ in range(8):
            d.mouse.click(HORIZONTAL, -1)
        d.run("xdotool", "keydown", "shift")
        for _ in range(4):
            d.mouse.click(VERTICAL, -1)
        d.run("xdotool", "keyup", "shift")
        d.set_property("Mouse", SCROLL_METHODS, 0, 0, 1)
        for _ in range(20):  # a wheel for the thumb that turns finely
            d.mouse.click(HORIZONTAL, -0.4)
        self.expect_nothing_flagged("wheels")
        self.assertTrue(self.cards() == before, "the column moved")
        d.mouse.click(VERTICAL, 1)
        d.wait_for(lambda: self.cards() != before, "the wheel to scroll", 2)
        self.expect_nothing_flagged("the wheel")

    def test_cards_go_with_the_fingers_whatever_the_touchpads_settings(self):
        d = self.desktop
        d.set_property("Touchpad", SCROLL_METHODS, 1, 1, 0)
        d.set_property("Touchpad", NATURAL_SCROLLING, 0)
        self.fingers(-3.5, leave=False)  # the content goes to the left when the fingers go to the right
        time.sleep(1)  # the fingers rest
        self.fingers(-3.5)
        self.expect("the priority", prio=["Card number 1"])
        d.set_property("Touchpad", NATURAL_SCROLLING, 1)
        self.fingers(6.5)
        self.expect("no priority")

    def test_swipes_go_through_no_menu(self):
        d = self.desktop
        d.click(*CARD, button=3)
        time.sleep(0.3)
        d.move(CARD[0] - 200, CARD[1] + 164)
        time.sleep(0.2)
        self.fingers(6.5)
        self.expect_nothing_flagged("a swipe beside the menu of a card")
        d.key("Escape")
        time.sleep(0.3)
        self.fingers(6.5)
        self.expect("the swipe once the menu is gone", prio=["Card number 5"])
        # The same for a menu that comes while the pointer rests on a card.
        d.key(*["Tab"] * 4, "m")
        time.sleep(0.3)
        self.fingers(6.5)
        time.sleep(0.7)
        self.expect("a swipe beside a menu opened by a key", prio=["Card number 5"])
        d.key("Escape")
        time.sleep(0.3)
        self.fingers(6.5)
        self.expect("the swipe once that menu is gone")

    def test_two_fingers_swipe_todos_too(self):
        d = self.desktop

        def todos():
            return [(todo["text"], todo.get("prio", False)) for todo in self.desktop.read("todos.json").get("todos", [])]
        d.click(*TITLE)
        d.move(*TODO)
        time.sleep(0.3)
        self.fingers(6.5)
        d.wait_for(lambda: todos() == [("Send the deck", True)], "the todo's priority", 3)
        time.sleep(0.5)
        self.fingers(-6.5)
        d.wait_for(lambda: todos() == [], "the todo to go", 3)
        d.key("ctrl+z")
        d.wait_for(lambda: todos() == [("Send the deck", True)], "the todo to come back", 3)
        self.expect_nothing_flagged("swiping todos")

    def test_control_z_is_not_taken_from_a_text_field_or_by_a_folded_panel(self):
        d = self.desktop
        self.fingers(6.5)
        self.expect("the priority", prio=["Card number 1"])
        d.key("ctrl+space")
        time.sleep(0.5)
        d.run("xdotool", "type", "milk")
        d.key("ctrl+z")
        time.sleep(0.5)
        self.expect("the priority to stay while something is typed", prio=["Card number 1"])
        d.move(*AWAY)
        d.key("Escape", "Escape")
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold")
        d.key("ctrl+z")
        time.sleep(0.5)
        self.expect("the priority to stay while the panel is folded", prio=["Card number 1"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
