"""The panel on screens that come, go and change, of different scales."""

import time
import unittest

from screens import DesktopWithScreens


class Screens:
    """The tests, run once with a compositor and once without."""

    compositor = False

    def setUp(self):
        self.desktop = DesktopWithScreens(compositor=self.compositor, window_manager=True)
        self.addCleanup(self.desktop.close)
        self.desktop.write_briefing("2026-11-22.md", "# Morning\n### Schedule\n- one\n- two\n- three\n")
        self.desktop.start_program()

    def wait_for_screen(self, frame):
        self.desktop.wait_for(lambda: self.desktop.report()["screenFrame"] == frame, "the screen " + frame, 5)

    def folds_and_opens(self, notch, away):
        """Whether the pointer opens the panel here and closes it there."""
        d = self.desktop
        d.move(*away)
        time.sleep(0.2)
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold", 3)
        d.move(*notch)
        d.wait_for(lambda: d.report()["expanded"], "the panel to unfold", 3)
        d.move(*away)
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold", 3)
        time.sleep(1)

    def assert_notch(self, middle, width, height):
        """The folded notch is exactly this large, in pixels."""
        picture = self.desktop.screenshot()
        row = [picture.at(x, height // 2) for x in range(middle - width, middle + width)]
        column = [picture.at(middle, y) for y in range(2 * height)]
        self.assertEqual((row.count((0, 0, 0)), column.count((0, 0, 0))), (width, height))
        self.assertEqual((row[0], row[-1], column[-1]), (picture.wallpaper,) * 3)

    def test_it_moves_to_a_screen_of_another_scale_and_back(self):
        d = self.desktop
        d.plug(d.SECOND, (1920, 1080), "--right-of", d.FIRST)
        self.folds_and_opens((640, 5), (100, 700))
        self.assert_notch(640, 200, 32)

        d.run("xrandr", "--output", d.SECOND, "--primary")
        self.wait_for_screen("{{1280, 0}, {960, 540}}")
        self.assertEqual(d.report()["panelFrame"], "{{1370, 25}, {780, 515}}")
        self.folds_and_opens((1280 + 960, 10), (1280 + 100, 900))
        self.assert_notch(1280 + 960, 400, 64)
        d.move(640, 5)  # where it was
        time.sleep(0.5)
        self.assertFalse(d.report()["expanded"])

        d.unplug(d.SECOND)
        self.wait_for_screen("{{0, 0}, {1280, 800}}")
        self.folds_and_opens((640, 5), (100, 700))
        self.assert_notch(640, 200, 32)

    def test_it_follows_a_screen_that_changes_its_size(self):
        d = self.desktop
        d.plug(d.FIRST, (1920, 1080))
        self.wait_for_screen("{{0, 0}, {1920, 1080}}")
        self.assertEqual(d.report()["panelFrame"], "{{570, 106}, {780, 974}}")
        self.folds_and_opens((960, 5), (100, 700))
        self.assert_notch(960, 200, 32)

    def test_a_todo_that_is_half_typed_outlives_the_change(self):
        d = self.desktop
        d.key("ctrl+space")
        d.wait_for(lambda: d.report()["expanded"], "the panel to unfold", 3)
        time.sleep(0.5)
        d.run("xdotool", "type", "buy ")
        d.plug(d.FIRST, (1920, 1080))
        self.wait_for_screen("{{0, 0}, {1920, 1080}}")
        time.sleep(0.5)
        d.run("xdotool", "type", "milk")
        d.key("Return")
        d.wait_for(lambda: d.todos() == ["buy milk"], "the todo", 3)

    def test_it_survives_a_while_without_any_screen(self):
        d = self.desktop
        d.unplug(d.FIRST)
        time.sleep(1.5)
        d.plug(d.FIRST, (1280, 800))
        self.wait_for_screen("{{0, 0}, {1280, 800}}")
        self.folds_and_opens((640, 5), (100, 700))
        self.assert_notch(640, 200, 32)


class WithoutCompositor(Screens, unittest.TestCase):
    pass


class WithCompositor(Screens, unittest.TestCase):
    compositor = True


if __name__ == "__main__":
    unittest.main(verbosity=2)
