"""The todo column, worked with the pointer and with the keyboard alone, and judged by todos.json."""

import time
import unittest

from desktop import BRIEF_LEFT, COLUMNS_TOP, REFERENCE_DATE, TODO_LEFT, TODO_RIGHT, Desktop, todo

FIELD = (TODO_LEFT + 60, COLUMNS_TOP + 52)
TICK_X = TODO_LEFT + 20
TEXT_X = TODO_LEFT + 90
# A row's last badge.
BADGE_X = TODO_RIGHT - 6 - 4 - 10
EDIT, PRIO, REMIND, DELETE = range(4)


def row_y(row):
    return COLUMNS_TOP + 90 + 28 * row


class Todos(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop(window_manager=True)
        self.addCleanup(self.desktop.close)

    def open_panel(self, *todos, briefing=None):
        d = self.desktop
        if briefing:
            d.write_briefing(time.strftime("%Y-%m-%d.md"), briefing)
        if todos:
            d.write_todos(*todos)
        d.start_program()
        d.unfold()

    def todos(self):
        return self.desktop.read("todos.json").get("todos", [])

    def order(self):
        """The texts, with a mark on priorities and on what is done."""
        return [entry["text"] + "!" * bool(entry.get("prio")) + "." * entry["done"] for entry in self.todos()]

    def expect(self, *order):
        self.desktop.await_value(self.order, list(order), "the list")
        time.sleep(0.5)  # until the rows stand still

    def expect_open(self, *order):
        """The same for the todos that are not done."""
        self.desktop.wait_for(lambda: [entry for entry in self.order() if entry[-1] != "."] == list(order), "the list", 3)
        time.sleep(0.5)

    def choose(self, row, action):
        self.desktop.click(TEXT_X, row_y(row), button=3)
        time.sleep(0.3)
        self.desktop.key(*["Down"] * (action + 1), "Return")
        time.sleep(0.3)

    def type(self, text):
        self.desktop.run("xdotool", "type", "--delay", "5", text)

    def reminder(self, row):
        """In how many seconds the todo reminds, and how often."""
        entry = self.todos()[row]
        at = entry.get("remindAt")
        return (None if at is None else at + REFERENCE_DATE - time.time()), entry.get("remindRepeat")

    def test_todos_are_written_down_ticked_and_edited(self):
        d = self.desktop
        self.open_panel()
        d.click(FIELD[0], FIELD[1] + 24)  # below the words of the empty list
        self.type("  Call mum ")
        d.key("Return")
        self.type("Pay rent")
        d.key("Return")
        self.type("Water")
        d.key("Return", "Return")
        self.expect("Call mum", "Pay rent", "Water")
        self.assertEqual(self.todos()[0]["source"], "you")
        d.click(TICK_X, row_y(0))
        self.expect("Pay rent", "Water", "Call mum.")

        self.choose(0, EDIT)
        self.type("Pay the rent")  # in place of the old text, which is selected
        d.key("Return")
        self.expect("Pay the rent", "Water", "Call mum.")
        self.choose(1, EDIT)
        self.type("Wine")
        d.key("Escape")
        self.expect("Pay the rent", "Water", "Call mum.")
        self.choose(1, EDIT)
        self.type("Plants")
        d.click(*FIELD)  # leaving it keeps it
        self.expect("Pay the rent", "Plants", "Call mum.")
        d.key("Down", "ctrl+z", "ctrl+z")
        self.expect("Pay rent", "Water", "Call mum.")
        self.choose(1, EDIT)
        self.type("Juice")
        d.run("xdotool", "mousemove", "100", "700", "click", "1")  # turning away keeps it too
        self.expect("Pay rent", "Juice", "Call mum.")
        d.unfold()
        d.click(*FIELD)
        d.key("Escape")
        d.wait_for(lambda: not d.report()["expanded"], "Escape to fold the panel", 2)

    def test_rows_are_dragged_and_swiped_with_the_mouse(self):
        d = self.desktop
        self.open_panel(*map(todo, "abcd"), todo("e", done=True))
        d.drag((TEXT_X, row_y(0)), (TEXT_X + 20, row_y(2)))
        self.expect("b", "c", "a", "d", "e.")
        d.drag((TEXT_X, row_y(3)), (TEXT_X, row_y(0) - 20))
        self.expect("d", "b", "c", "a", "e.")
        d.drag((TEXT_X, row_y(0)), (TEXT_X, row_y(6)))  # not among the done ones
        self.expect("b", "c", "a", "d", "e.")
        d.drag((TEXT_X, row_y(1)), (TEXT_X + 70, row_y(1)))
        self.expect("b", "c", "a", "d", "e.")
        d.drag((TEXT_X, row_y(1)), (TEXT_X + 72, row_y(1) + 30))
        self.expect("c!", "b", "a", "d", "e.")
        d.drag((TEXT_X + 100, row_y(2)), (TEXT_X + 28, row_y(2)))
        self.expect("c!", "b", "d", "e.")
        d.key("ctrl+z")
        self.expect("c!", "b", "a", "d", "e.")

    def test_menus_open_by_right_click_and_by_holding(self):
        d = self.desktop
        more = [todo("done %d" % i, done=True) for i in range(6)]  # room for the menu below the rows
        self.open_panel(todo("a"), todo("b"), todo("c"), *more)
        self.choose(1, PRIO)
        self.expect_open("b!", "a", "c")
        self.choose(0, PRIO)
        self.expect_open("b", "a", "c")
        self.choose(1, DELETE)
        self.expect_open("b", "c")
        d.key("ctrl+z")
        self.expect_open("b", "a", "c")

        self.choose(0, REMIND)  # now the menu offers times
        d.key("Down", "Down", "Return")
        d.wait_for(lambda: self.reminder(0)[0] is not None, "the reminder", 2)
        self.assertAlmostEqual(self.reminder(0)[0], 3 * 3600, delta=5)
        d.click(BADGE_X, row_y(0))  # the bell
        d.wait_for(lambda: self.reminder(0)[0] is None, "the bell to clear it", 2)

        # Held, drawn onto the first time and let go there.
        d.drag((TEXT_X, row_y(1)), (TEXT_X + 10, row_y(1) + 50), hold=0.7)
        d.wait_for(lambda: self.reminder(1)[0] is not None, "the reminder", 2)
        self.assertAlmostEqual(self.reminder(1)[0], 3600, delta=5)
        self.expect_open("b", "a", "c")
        # Held and let go at once it stays open, with a row to clear the reminder.
        d.drag((TEXT_X, row_y(1)), (TEXT_X + 7, row_y(1)), hold=0.7)
        d.key("Up", "Return")
        d.wait_for(lambda: self.reminder(1)[0] is None, "the menu to clear it", 2)
        # A tick takes the reminder away for good.
        self.choose(2, REMIND)
        d.key("Down", "Return")
        d.wait_for(lambda: self.reminder(2)[0] is not None, "the reminder", 2)
        d.click(TICK_X, row_y(2))
        self.expect_open("b", "a")
        d.click(TICK_X, row_y(2))
        self.expect_open("b", "a", "c")
        self.assertEqual(self.reminder(2), (None, None))
        # Let go too early it opens no menu, which Escape would only close.
        d.drag((TEXT_X, row_y(2)), (TEXT_X + 5, row_y(2)), hold=0.1)
        d.key("Escape")
        d.wait_for(lambda: not d.report()["expanded"], "Escape to fold the panel", 2)

    def test_the_keyboard_alone_does_it_all(self):
        d = self.desktop
        self.open_panel(*map(todo, "abc"))
        d.click(TODO_LEFT + 60, COLUMNS_TOP + 20)  # for the keyboard, on nothing
        d.key("F6")
        self.type("d")
        d.key("Return", "Down")
        self.expect("a", "b", "c", "d")
        d.key("Down", "space")
        self.expect("a", "c", "d", "b.")
        d.key("space")
        self.expect("a", "c", "d", "b")
        d.key("alt+Up", "alt+Up")
        self.expect("a", "b", "c", "d")
        d.key("F2")
        self.type("B")
        d.key("Return")
        self.expect("a", "B", "c", "d")
        d.key("p")
        self.expect("B!", "a", "c", "d")
        d.key("alt+Down")
        self.expect("B!", "a", "c", "d")
        d.key("shift+Right")
        self.expect("B", "a", "c", "d")
        d.key("Down", "Delete")
        self.expect("B", "c", "d")
        d.key("ctrl+z")
        self.expect("B", "a", "c", "d")
        d.key("End", "m", "Up", "Return")
        self.expect("B", "a", "c")

        # A time of one's own, weekly; an hour later than the sheet suggests.
        d.key("Home", "r", "Up", "Return")
        time.sleep(0.6)
        d.key("Tab", "Tab", "Tab", "Up", "Tab", "Tab", "Right", "Right", "Return")
        d.wait_for(lambda: self.reminder(0)[0] is not None, "the reminder", 3)
        seconds, rule = self.reminder(0)
        self.assertEqual(rule, "weekly")
        self.assertTrue(1.5 * 3600 - 5 <= seconds <= 2.5 * 3600 + 65, seconds)
        d.key("r", "Up", "Return")
        d.wait_for(lambda: self.reminder(0) == (None, None), "the menu to clear it", 2)
        d.key("Home", "Delete", "Delete", "Delete")
        self.expect()
        d.key("ctrl+z", "ctrl+z", "ctrl+z")
        self.expect("B", "a", "c")
        d.key("Escape")
        d.wait_for(lambda: not d.report()["expanded"], "Escape to fold the panel", 2)

    def test_a_long_todo_is_edited_whole(self):
        d = self.desktop
        self.open_panel(todo("a " + "very " * 600 + "long one"))
        d.click(*FIELD)
        d.key("Down", "F2")
        d.key("End")
        self.type(" indeed")
        d.key("Return")
        self.expect("a " + "very " * 600 + "long one indeed")

    def test_an_edit_survives_the_end_of_the_program(self):
        d = self.desktop
        self.open_panel(todo("Call"))
        d.click(*FIELD)
        d.key("Down", "F2")
        self.type("Call Anna")
        d.program.terminate()
        self.assertEqual(d.program.wait(5), 0)
        self.assertEqual(self.order(), ["Call Anna"])

    def drop_card(self, y):
        d = self.desktop
        d.drag((BRIEF_LEFT + 300, y), (TEXT_X, row_y(0) + 15), steps=30, release=False)
        for x in (TEXT_X + 4, TEXT_X + 8):  # until the desktop has noticed where the card is
            d.move(x, row_y(0) + 17)
            time.sleep(0.2)
        d.run("xdotool", "mouseup", "1")

    def test_a_card_becomes_a_todo_or_is_linked_to_one(self):
        d = self.desktop
        self.open_panel(todo("Reply  to legal"), briefing="# Morning\n### Schedule\n- Reply to Legal\n- Call Anna\n")
        self.drop_card(COLUMNS_TOP + 97)
        self.expect("Reply  to legal", "Call Anna")
        added = self.todos()[1]
        self.assertEqual((added["source"], added["sourceItemKey"]), ("item", "call-anna"))
        self.drop_card(COLUMNS_TOP + 56)
        d.wait_for(lambda: self.todos()[0].get("sourceItemKey") == "reply-to-legal", "the link", 3)
        self.expect("Reply  to legal", "Call Anna")

    def test_a_long_list_scrolls_with_the_wheel(self):
        d = self.desktop
        self.open_panel(*[todo("todo %d" % i) for i in range(60)])
        for _ in range(30):
            d.click(TEXT_X, row_y(3), button=5)
        time.sleep(0.5)
        d.click(TICK_X, row_y(3))
        d.wait_for(lambda: sum(entry["done"] for entry in self.todos()) == 1, "a tick far down the list", 3)
        ticked = next(entry["text"] for entry in self.todos() if entry["done"])
        self.assertGreater(int(ticked.split()[1]), 20)

    def test_a_row_that_is_dragged_to_an_end_of_the_list_scrolls_it(self):
        d = self.desktop
        self.open_panel(*[todo("todo %d" % i) for i in range(60)])
        end = row_y(12) - 9
        d.drag((TEXT_X, row_y(1)), (TEXT_X, end), release=False)
        time.sleep(1.2)
        d.run("xdotool", "mouseup", "1")
        d.wait_for(lambda: self.order().index("todo 1") > 20, "the row to have gone far down", 3)
        self.assertEqual(sorted(self.order()), sorted("todo %d" % i for i in range(60)))
        time.sleep(0.5)
        d.click(TICK_X, end)  # it lies where it was let go
        d.wait_for(lambda: self.order()[-1] == "todo 1.", "its tick", 3)
        # Further than any end it stops there.
        d.drag((TEXT_X, row_y(5)), (TEXT_X, row_y(0) - 60), release=False)
        time.sleep(3)
        d.run("xdotool", "mouseup", "1")
        d.wait_for(lambda: self.order()[0] != "todo 0", "the row to be the first", 3)
        first = self.order()[0]
        time.sleep(0.5)
        d.click(TICK_X, row_y(0))
        d.wait_for(lambda: first + "." in self.order(), "the tick of the first row", 3)

    def test_a_row_that_the_keyboard_moves_stays_in_sight(self):
        d = self.desktop
        self.open_panel(*[todo("todo %d" % i) for i in range(30)])
        d.click(*FIELD)
        d.key("Down", *["alt+Down"] * 20)
        d.wait_for(lambda: self.order().index("todo 0") == 20, "the row to have moved", 3)
        time.sleep(0.5)
        d.click(TICK_X, row_y(12) - 9)
        d.wait_for(lambda: self.order()[-1] == "todo 0.", "the tick of the last row in sight", 3)


if __name__ == "__main__":
    unittest.main(verbosity=2)
