"""Whoever wants no motion gets none: the panel is open at once, where otherwise a spring takes it there. Either way it
goes to the height that it keeps, also when nothing of it was made before."""

import ctypes
import os
import subprocess
import time
import unittest

from desktop import AWAY, NOTCH, Desktop

PORTAL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "settings_portal.py")


class ShapeEvent(ctypes.Structure):
    """What the X server tells when a window gets another shape, which the panel's window does in every frame."""
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("sent", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("kind", ctypes.c_int), ("x", ctypes.c_int),
                ("y", ctypes.c_int), ("width", ctypes.c_uint), ("height", ctypes.c_uint), ("time", ctypes.c_ulong),
                ("shaped", ctypes.c_int), ("room", ctypes.c_long * 24)]


class ShapeWatch:
    """Follows every shape that a window gets, not only those that a look at the screen happens to find."""

    def __init__(self, desktop, window):
        self.x11, extension = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXext.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(desktop.environment["DISPLAY"].encode()))
        base, error = ctypes.c_int(), ctypes.c_int()
        assert extension.XShapeQueryExtension(self.display, ctypes.byref(base), ctypes.byref(error))
        self.notify = base.value
        extension.XShapeSelectInput(self.display, ctypes.c_ulong(int(window)), ctypes.c_ulong(1))
        self.x11.XSync(self.display, False)

    def sizes(self, seconds):
        """The widths and heights of its bounding shapes during that time, in order."""
        found, event, end = [], ShapeEvent(), time.monotonic() + seconds
        while time.monotonic() < end:
            while self.x11.XPending(self.display):
                self.x11.XNextEvent(self.display, ctypes.byref(event))
                if event.type == self.notify and event.kind == 0:
                    found.append((event.width, event.height))
            time.sleep(0.005)
        return [size for size, before in zip(found, [None] + found) if size != before]

    def close(self):
        self.x11.XCloseDisplay(self.display)


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

    def open_cold(self, **settings):
        """Every size that the panel's outline has from a start to an open panel that no pointer announced."""
        d = self.desktop
        d.set_defaults(**settings)
        # Neither as high as the least panel nor as one that is not measured yet.
        d.write_briefing("2026-11-22.md", "# Morning\n### Schedule\n" + "- A card\n" * 9)
        d.start_program()
        d.wait_for(lambda: d.report()["briefings"] == 1, "the briefing")
        watch = ShapeWatch(d, d.search("Dawnly")[0])
        self.addCleanup(watch.close)
        d.signal("expand")
        sizes = watch.sizes(2)
        self.assertGreater(sizes[-1][1], 400)
        return sizes

    def test_the_first_opening_goes_straight_to_its_height(self):
        sizes = self.open_cold()
        self.assertGreater(len(sizes), 6, sizes)
        (folded_width, folded_height), (width, height) = sizes[0], sizes[-1]
        for now_wide, now_high in sizes:
            part = (now_wide - folded_width) / (width - folded_width)
            self.assertAlmostEqual(now_high, folded_height + (height - folded_height) * part, delta=4, msg=sizes)

    def test_the_first_opening_without_motion_is_one_jump(self):
        self.assertEqual(len(self.open_cold(reduceMotion=True)), 1)


if __name__ == "__main__":
    unittest.main(verbosity=2)
