"""Whoever wants no motion gets none: the panel is open at once, where otherwise a spring takes it there."""

import os
import subprocess
import time
import unittest

from desktop import AWAY, NOTCH, Desktop

PORTAL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "settings_portal.py")


class Motion(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)
        self.desktop.write_briefing("2026-11-22.md", "# Morning\n### Schedule\n- One\n- Two\n")

    def heights(self):
        """The heights that the panel has on the screen while it unfolds."""
        d = self.desktop
        d.move(*AWAY)
        d.wait_for(lambda: d.report()["expanded"] is False, "the panel to fold")
        time.sleep(1)
        folded = d.screenshot().lowest_panel_row()
        # What the panel shows is made, and measured, when the pointer comes near.
        d.move(NOTCH[0], 150)
        time.sleep(0.5)
        d.move(*NOTCH)
        seen, end = [folded], time.monotonic() + 1.5
        while time.monotonic() < end:
            height = d.screenshot().lowest_panel_row()
            if height != seen[-1]:
                seen.append(height)
        self.assertGreater(seen[-1], folded + 150, "the panel is open")
        return seen

    def expect_spring(self):
        heights = self.heights()
        self.assertGreater(len(heights), 6, heights)

    def expect_jump(self):
        heights = self.heights()
        self.assertLessEqual(len(heights), 2, heights)

    def test_the_settings_of_the_desktop_count_unless_the_user_has_another(self):
        d = self.desktop
        portal = d.start("/usr/bin/python3", PORTAL, "off", stdin=subprocess.PIPE, stderr=None)
        self.addCleanup(portal.stdin.close)
        names = ["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                 "org.freedesktop.DBus.ListNames"]
        d.wait_for(lambda: b"org.freedesktop.portal.Desktop" in d.run(*names), "the portal")
        d.start_program()
        self.expect_jump()
        portal.stdin.write(b"\n")
        portal.stdin.flush()
        self.expect_spring()
        # At once, also while the program runs.
        d.set_defaults(reduceMotion=True)
        self.expect_jump()
        portal.stdin.write(b"\n")
        portal.stdin.flush()
        d.set_defaults(reduceMotion=False)
        self.expect_spring()

    def test_without_a_portal_there_is_motion(self):
        self.desktop.start_program()
        self.expect_spring()


if __name__ == "__main__":
    unittest.main(verbosity=2)
