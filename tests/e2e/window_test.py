"""The panel among other programs' windows: who gets the keyboard, what folds it, what it stays above."""

import time
import unittest

import neighbours
from desktop import AWAY, COLUMNS_TOP, NOTCH, WIDTH, Desktop

BRIEFING = "# Morning\n### Schedule\n- one\n- two\n- three\n"
CARD = (WIDTH // 2 - 200, COLUMNS_TOP + 110)


class Windows:
    """Set-up for each test, run once with a compositor and once without."""

    compositor = False

    def setUp(self):
        self.desktop = Desktop(compositor=self.compositor, window_manager=True)
        self.addCleanup(self.desktop.close)
        self.desktop.write_briefing("2026-11-22.md", BRIEFING)

    def start(self):
        """The program, and a window of another program that has the keyboard."""
        self.neighbour = neighbours.Typewriter(self.desktop)
        self.desktop.start_program()
        self.neighbour.activate()

    def wait_until(self, expanded, seconds=3):
        self.desktop.wait_for(lambda: self.desktop.report()["expanded"] is expanded,
                              "the panel to be " + ("open" if expanded else "folded"), seconds)

    @staticmethod
    def settle():
        """Until springs are at rest and events have gone round."""
        time.sleep(0.8)

    def panel_shows(self):
        return self.desktop.screenshot().at(*NOTCH) == (0, 0, 0)


class Keyboard(Windows):
    def test_a_click_on_the_folded_notch_takes_no_keyboard(self):
        d = self.desktop
        self.start()
        d.click(WIDTH // 2 - 90, 12)  # part of the notch, and yet too far out to open it
        self.settle()
        self.assertFalse(d.report()["expanded"])
        d.key("a")
        d.unfold()
        d.key("b")  # nor does hovering
        d.click(WIDTH // 2, 60)
        d.wait_for(lambda: not self.neighbour.has_keyboard(), "the panel to take the keyboard", 2)
        d.key("Escape")
        self.wait_until(False)
        d.wait_for(self.neighbour.has_keyboard, "the keyboard to go back", 2)
        d.click(*NOTCH)  # in the moment in which it does not open again
        d.key("c")
        d.wait_for(lambda: self.neighbour.typed() == "abc", "all letters to reach the other window", 3)

    def test_the_hotkey_takes_the_keyboard_and_gives_it_back(self):
        d = self.desktop
        self.start()
        for lock in (None, "Caps_Lock", "Num_Lock", "Scroll_Lock"):
            with self.subTest(lock=lock):
                if lock:
                    d.key(lock)
                d.key("ctrl+space")
                self.wait_until(True)
                self.assertFalse(self.neighbour.has_keyboard())
                d.key("ctrl+space")
                self.wait_until(False)
                d.wait_for(self.neighbour.has_keyboard, "the keyboard to go back", 2)
        self.assertEqual(self.neighbour.presses(r"keysym 0x20, (space)"), [])

    def test_what_is_typed_right_after_the_hotkey_becomes_a_todo(self):
        d = self.desktop
        self.start()
        # One command: the letters follow the hotkey within milliseconds.
        d.run("xdotool", "key", "ctrl+space", "sleep", "0.03", "type", "--delay", "8", "buy milk")
        d.key("Return")
        d.wait_for(lambda: "buy milk" in d.todos(), "the todo", 3)
        self.wait_until(False)
        d.wait_for(self.neighbour.has_keyboard, "the keyboard to go back", 2)
        self.assertEqual(self.neighbour.typed(), "")

    def test_a_key_that_is_held_down_opens_once(self):
        d = self.desktop
        self.start()
        d.run("xdotool", "keydown", "ctrl", "keydown", "space")
        self.wait_until(True)
        for _ in range(15):  # repeating begins after 0.66 s
            time.sleep(0.1)
            self.assertTrue(d.report()["expanded"])
        d.run("xdotool", "keyup", "space", "keyup", "ctrl")
        self.assertTrue(d.report()["expanded"])

    def test_the_keyboard_goes_to_a_window_that_is_left(self):
        d = self.desktop
        self.start()
        other = neighbours.Typewriter(d, "Other", "200x100+1050+20")
        other.activate()
        d.key("ctrl+space")
        self.wait_until(True)
        other.close()
        d.key("ctrl+space")
        self.wait_until(False)
        d.wait_for(self.neighbour.has_keyboard, "the other window to get the keyboard", 3)

    def test_another_owner_of_the_hotkey_spoils_nothing_else(self):
        d = self.desktop
        neighbours.start(d, "owner")
        self.start()
        d.key("ctrl+space")
        self.settle()
        self.assertFalse(d.report()["expanded"])
        # Without the lock key the chord is nobody's.
        d.wait_for(lambda: self.neighbour.presses(r"keysym 0x20, (space)"), "the space to reach the other window", 2)
        d.unfold()
        self.assertTrue(d.report()["expanded"])

    def test_the_hotkey_follows_the_keyboard_mapping(self):
        d = self.desktop
        self.start()
        d.run("xmodmap", "-e", "keycode 65 = F13", "-e", "keycode 191 = space")
        d.run("xdotool", "key", "ctrl+191")
        self.wait_until(True)


class Folding(Windows):
    def test_turning_to_another_window_folds_it(self):
        d = self.desktop
        self.start()
        other = neighbours.Typewriter(d, "Other", "200x100+1050+20")
        for name, turn in {
                "a click on the other window": lambda: d.click(1100, 70),
                "a click on the desktop": lambda: d.click(*AWAY),
                "a click in the panel's window, below the card": lambda: d.click(WIDTH // 2, 620),
                "activation by the window manager": other.activate,
                "another desktop": lambda: d.run("wmctrl", "-s", "1"),
        }.items():
            with self.subTest(name):
                self.neighbour.activate()
                d.move(*AWAY)
                d.wait_for(lambda: not d.report()["expanded"] and not d.report()["suppressed"], "the panel to rest")
                d.unfold()
                d.move(WIDTH // 2, 150)
                turn()
                self.wait_until(False)
                self.settle()
                self.assertTrue(self.panel_shows())
        self.assertEqual(d.report()["spaceID"], 2)

    def test_the_click_that_folds_it_moves_the_keyboard(self):
        d = self.desktop
        self.start()
        other = neighbours.Typewriter(d, "Other", "200x100+1050+20")
        self.neighbour.activate()
        d.unfold()
        d.click(WIDTH // 2, 60)
        d.wait_for(lambda: not self.neighbour.has_keyboard(), "the panel to take the keyboard", 2)
        d.click(1100, 70)
        self.wait_until(False)
        self.settle()
        self.assertTrue(other.has_keyboard())

    def test_it_stays_open_while_a_menu_is_open(self):
        d = self.desktop
        self.start()
        d.unfold()
        d.click(*CARD, button=3)
        self.settle()
        d.move(*AWAY)
        self.settle()
        self.assertTrue(d.report()["expanded"])
        d.key("Escape")  # closes the menu
        self.settle()
        d.move(AWAY[0] + 5, AWAY[1])
        self.wait_until(False)


class Stacking(Windows):
    def test_it_stays_above_full_screen_windows(self):
        d = self.desktop
        self.start()
        self.neighbour.full_screen()
        d.wait_for(lambda: d.report()["spaceType"] == 4, "the full-screen window", 3)
        d.wait_for(self.panel_shows, "the notch above the full-screen window", 3)
        d.run("xdotool", "windowraise", self.neighbour.window)
        self.settle()
        self.assertTrue(self.panel_shows())
        late = neighbours.Typewriter(d, "Late", "1280x800+0+0")
        late.full_screen()
        self.settle()
        self.assertTrue(self.panel_shows())
        d.unfold()
        self.assertGreaterEqual(d.screenshot().card_count(), 1)

    def test_it_comes_up_again_when_it_is_covered(self):
        d = self.desktop
        self.start()
        neighbours.start(d, "bar")  # no window manager keeps this one below
        d.wait_for(lambda: d.screenshot().at(10, 10) == (255, 255, 255), "the bar", 3)
        d.wait_for(self.panel_shows, "the notch above the bar", 2)

    def test_a_locked_screen_stays_above_it(self):
        d = self.desktop
        self.start()
        self.assertTrue(self.panel_shows())
        lock = neighbours.start(d, "curtain")
        self.settle()
        white = (255, 255, 255)
        self.assertEqual(d.screenshot().at(*NOTCH), white)
        d.run("wmctrl", "-s", "1")  # whereupon the panel is built anew
        d.wait_for(lambda: d.report()["spaceID"] == 2, "the other desktop", 3)
        self.settle()
        self.assertEqual(d.screenshot().at(*NOTCH), white)
        d.wait_for(lambda: not d.report()["suppressed"], "the panel to rest")
        d.unfold()
        self.assertEqual(d.screenshot().at(*CARD), white)
        d.move(*AWAY)
        self.wait_until(False)
        lock.terminate()
        d.wait_for(self.panel_shows, "the notch after the lock has gone", 3)


class KeyboardWithoutCompositor(Keyboard, unittest.TestCase):
    pass


class KeyboardWithCompositor(Keyboard, unittest.TestCase):
    compositor = True


class FoldingWithoutCompositor(Folding, unittest.TestCase):
    pass


class FoldingWithCompositor(Folding, unittest.TestCase):
    compositor = True


class StackingWithoutCompositor(Stacking, unittest.TestCase):
    pass


class StackingWithCompositor(Stacking, unittest.TestCase):
    compositor = True


if __name__ == "__main__":
    unittest.main(verbosity=2)
