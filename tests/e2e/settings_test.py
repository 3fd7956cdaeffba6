"""The settings and the welcome tour: what the user chooses there is kept, and takes effect at once."""

import os
import re
import subprocess
import time
import unittest

from desktop import AWAY, HEADER_Y, PANEL_RIGHT, Desktop

GEAR = (PANEL_RIGHT - 30 - 20 - 13, HEADER_Y)
FIRST_RUN = {"didWriteWelcomeBrief": False, "didCompleteOnboarding": False}

# In the settings window, from its upper left corner.
GENERAL, BRIEFINGS = (80, 64), (80, 98)
HAZE_SWATCH, SOLID_END = (288, 75), (214, 181)
QUICK_CAPTURE_SWITCH = (621, 132)
CHOOSE_FOLDER, RESET_FOLDER = (270, 103), (551, 103)


class WindowsTest(unittest.TestCase):
    def start(self, **options):
        self.desktop = Desktop(window_manager=True, **options)
        self.addCleanup(self.desktop.close)
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
