"""The settings and the welcome tour: what the user chooses there is kept, and takes effect at once."""

import os
import re
import subprocess
import time
import unittest

import neighbours
from desktop import AWAY, HEADER_Y, NOTCH, PANEL_RIGHT, WIDTH, Desktop

GEAR = (PANEL_RIGHT - 30 - 20 - 13, HEADER_Y)
FIRST_RUN = {"didWriteWelcomeBrief": False, "didCompleteOnboarding": False}

# In the settings window, from its upper left corner.
GENERAL, BRIEFINGS = (80, 64), (80, 98)
HAZE_SWATCH, SOLID_END = (288, 75), (214, 181)
QUICK_CAPTURE_SWITCH = (621, 132)
CHOOSE_FOLDER, RESET_FOLDER = (270, 103), (551, 103)


class WindowsTest(unittest.TestCase):
    def start(self, scale=1, **options):
        self.desktop = Desktop(window_manager=True, **options)
        self.addCleanup(self.desktop.close)
        self.desktop.environment["QT_SCALE_FACTOR"] = str(scale)
        self.desktop.start_program()
        self.panels = set(self.desktop.search("Dawnly"))
        return self.desktop

    def window(self, title):
        """Waits until a window of this title has the keyboard; its identifier."""
        d = self.desktop
        # The panel bears the program's name too.
        d.wait_for(lambda: d.focused_window() in set(d.search(title)) - self.panels, "the window " + title)
        return d.focused_window()

    def await_setting(self, key, expected):
        self.desktop.await_value(lambda: self.desktop.defaults().get(key), expected, key, 10)


class SettingsWindow(WindowsTest):
    def open_settings(self):
        d = self.desktop
        d.unfold()
        d.click(*GEAR)
        self.window("Dawnly")
        time.sleep(0.4)  # until it has its place and takes clicks
        self.origin = self.place()

    def exists(self, window):
        return subprocess.run(["xwininfo", "-id", window], env=self.desktop.environment, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False).returncode == 0

    def place(self):
        """Where the window is that has the keyboard."""
        told = self.desktop.run("xwininfo", "-id", self.desktop.focused_window()).decode()
        return tuple(map(int, re.findall(r"Absolute upper-left [XY]: +(-?\d+)", told)))

    def click(self, place):
        self.desktop.click(self.origin[0] + place[0], self.origin[1] + place[1])
        time.sleep(0.3)

    def test_the_panel_folds_for_them_and_a_theme_is_kept_with_its_translucency(self):
        d = self.start(settings={"notchTheme": "glass"})
        self.open_settings()
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold")
        self.click(HAZE_SWATCH)
        self.await_setting("notchTheme", "haze")
        self.await_setting("translucency.haze", 0.8)
        self.click(SOLID_END)
        d.wait_for(lambda: d.defaults()["translucency.haze"] < 0.05, "the slider to be at its solid end")
        self.assertNotIn("translucency.glass", d.defaults())
        self.assertEqual(d.report()["theme"], "haze")

    def test_a_closed_window_is_gone_and_comes_back_as_and_where_it_was(self):
        d = self.start()
        self.open_settings()
        self.click(GENERAL)
        d.run("xdotool", "windowmove", d.focused_window(), "60", "200")
        time.sleep(0.3)
        window, place = d.focused_window(), self.place()
        d.key("ctrl+w")
        d.wait_for(lambda: not self.exists(window), "the window to be gone")
        d.move(*AWAY)
        time.sleep(0.5)
        self.open_settings()
        self.assertEqual(self.origin, place)
        self.assertLess(place[0], 100)
        self.click(QUICK_CAPTURE_SWITCH)
        self.await_setting("quickCaptureEnabled", False)

    def test_what_the_companion_changes_shows_in_the_open_window(self):
        d = self.start()
        self.open_settings()
        self.click(GENERAL)
        d.run(os.environ["DAWNLYCTL"], "defaults", "write", "quickCaptureEnabled", "--bool", "false")
        d.report()  # which the program answers after it was told
        self.click(QUICK_CAPTURE_SWITCH)  # off by now
        self.await_setting("quickCaptureEnabled", True)

    def test_another_folder_is_made_watched_and_left_again(self):
        d = self.start()
        d.write_briefing("2026-11-22.md", "# Old folder\n### A\n- one\n")
        d.wait_for(lambda: d.report()["briefings"] == 1, "the first folder's briefing")
        self.open_settings()
        self.click(BRIEFINGS)
        self.click(CHOOSE_FOLDER)
        self.window("Choose Folder")
        # Giving up changes nothing.
        d.key("Escape")
        self.window("Dawnly")
        self.assertEqual(d.defaults()["briefingsFolderPath"], d.briefings)

        self.click(CHOOSE_FOLDER)
        self.window("Choose Folder")
        d.key("ctrl+a")
        d.run("xdotool", "type", d.home + "/new/folder")
        d.key("Return")
        self.await_setting("briefingsFolderPath", d.home + "/new/folder")
        d.wait_for(lambda: d.report()["briefings"] == 0, "the new folder to be read")
        for name in ("2026-11-22.md", "2026-11-21.md"):
            with open(os.path.join(d.home, "new/folder", name), "w") as file:
                file.write("# New folder\n### A\n- one\n")
        d.wait_for(lambda: d.report()["briefings"] == 2, "the new folder's briefings")
        self.click(RESET_FOLDER)
        self.await_setting("briefingsFolderPath", None)
        d.wait_for(lambda: d.report()["briefings"] == 0, "the default folder to be read")


class LargeLetters(WindowsTest):
    """On a screen of 640 by 400 points."""

    DOCK_TOP = 700  # pixels
    # In points: the gear on the screen, the others in the settings window.
    GEAR, BRIEFINGS, CHOOSE_FOLDER, TOUR = (597, HEADER_Y), (80, 98), (270, 103), (80, 230)

    def click(self, point, origin=(0, 0)):
        self.desktop.click(origin[0] + 2 * point[0], origin[1] + 2 * point[1])
        time.sleep(0.5)

    def frame(self, title):
        """The corners of the window of this title, with the frame around it, once it has the keyboard."""
        d = self.desktop
        window = self.window(title)
        time.sleep(0.4)
        told = d.run("xwininfo", "-id", window).decode()
        x, y = map(int, re.findall(r"Absolute upper-left [XY]: +(-?\d+)", told))
        width, height = (int(re.search(side + r": (\d+)", told).group(1)) for side in ("Width", "Height"))
        extents = re.findall(r"\d+", d.run("xprop", "-id", window, "_NET_FRAME_EXTENTS").decode())
        left, right, top, bottom = map(int, extents or (0, 0, 0, 0))
        self.place = (x, y)
        return x - left, y - top, x + width + right, y + height + bottom

    def assert_fits(self, title):
        left, top, right, bottom = self.frame(title)
        self.assertTrue(0 <= left < right <= WIDTH and 0 <= top < bottom <= self.DOCK_TOP,
                        "%s at %r" % (title, (left, top, right, bottom)))

    def test_panel_and_windows_fit_into_what_a_dock_leaves_of_the_screen(self):
        d = self.start(scale=2)
        dock = neighbours.Typewriter(d, "Dock", "1280x100+0+%d" % self.DOCK_TOP)
        d.run("xprop", "-id", dock.window, "-f", "_NET_WM_STRUT", "32c", "-set", "_NET_WM_STRUT", "0, 0, 0, 100")
        d.wait_for(lambda: b", %d," % self.DOCK_TOP in d.run("xprop", "-root", "_NET_WORKAREA"), "room for the dock")
        d.move(*NOTCH)
        d.wait_for(lambda: d.report()["expanded"], "the panel to unfold")
        self.assertEqual(d.report()["panelFrame"], "{{0, 4}, {640, 396}}")
        time.sleep(0.9)
        self.click(self.GEAR)
        self.assert_fits("Dawnly")
        settings = self.place
        self.click(self.BRIEFINGS, settings)
        self.click(self.CHOOSE_FOLDER, settings)
        self.assert_fits("Choose Folder")
        d.key("Escape")
        self.window("Dawnly")
        self.click(self.TOUR, settings)
        self.assert_fits("Welcome to Dawnly")


class Tour(WindowsTest):
    TITLE = "Welcome to Dawnly"

    def test_it_comes_back_until_it_was_gone_through_by_keyboard_alone(self):
        d = self.start(settings=FIRST_RUN)
        self.window(self.TITLE)
        today = time.strftime("%Y-%m-%d") + ".md"
        with open(os.path.join(d.briefings, today)) as file:
            self.assertTrue(file.read().startswith("# 👋 Welcome to Dawnly\n"))
        d.key("Return")
        time.sleep(0.5)
        d.key("Escape")
        d.wait_for(lambda: not d.search(self.TITLE), "the tour to close")
        self.assertFalse(d.defaults()["didCompleteOnboarding"])

        d.start_program()
        self.window(self.TITLE)
        for _ in range(3):  # the step's main button each time
            d.key("Return")
            time.sleep(0.5)
        d.wait_for(lambda: not d.search(self.TITLE), "the tour to end")
        self.await_setting("didCompleteOnboarding", True)

        os.remove(os.path.join(d.briefings, today))
        d.start_program()
        time.sleep(1)
        self.assertFalse(d.search(self.TITLE))
        self.assertFalse(os.path.exists(os.path.join(d.briefings, today)))

    def test_the_assistant_can_be_skipped(self):
        d = self.start(settings=FIRST_RUN)
        self.window(self.TITLE)
        d.key("Tab", "Return")  # from the main button to the one below it
        time.sleep(0.5)
        d.key("Return")
        self.await_setting("didCompleteOnboarding", True)


if __name__ == "__main__":
    unittest.main(verbosity=2)
