"""A desktop whose screens come and go: an X server with a graphics card that exists in memory only."""

import os
import re

from desktop import Desktop, Screenshot

CONFIGURATION = """
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoAddGPU" "false"
  Option "DontVTSwitch" "true"
EndSection
Section "Device"
  Identifier "Card"
  Driver "dummy"
  VideoRam 65536
EndSection
Section "Screen"
  Identifier "Screen"
  Device "Card"
  DefaultDepth 24
EndSection
"""
MODES = {(1280, 800): "83.50 1280 1352 1480 1680 800 803 809 831",
         (1920, 1080): "148.5 1920 2008 2052 2200 1080 1084 1089 1125"}


class Picture(Screenshot):
    """The pixels of all screens, as four bytes each."""

    def __init__(self, size, pixels):
        self.width, self.height = size
        self.bytes_per_pixel, self.stride, self.pixels = 4, 4 * self.width, pixels
        self.wallpaper = self.at(5, self.height - 5)


class DesktopWithScreens(Desktop):
    """Begins with one screen, FIRST; SECOND is there to be plugged in. FIRST is drawn at scale 1, SECOND at 2."""

    FIRST, SECOND = "DUMMY0", "DUMMY1"

    def _start_server(self):
        configuration = os.path.join(self.home, "xorg.conf")
        with open(configuration, "w") as file:
            file.write(CONFIGURATION)
        self._run_server("/usr/lib/xorg/Xorg", "-config", configuration, "-logfile", self.home + "/xorg.log",
                         "-sharevts", "-novtswitch", "-keeptty")
        for (width, height), timing in MODES.items():
            name = "%dx%d." % (width, height)
            self.run("xrandr", "--newmode", name, *timing.split())
            for output in (self.FIRST, self.SECOND):
                self.run("xrandr", "--addmode", output, name)
        self.plug(self.FIRST, (1280, 800))
        self.environment["QT_SCREEN_SCALE_FACTORS"] = self.FIRST + "=1;" + self.SECOND + "=2"

    def plug(self, output, size, *place):
        self.run("xrandr", "--output", output, "--mode", "%dx%d." % size, *place)
        # The server leaves new parts of the screen black.
        self.run("xsetroot", "-solid", "#c84090")

    def unplug(self, *outputs):
        self.run("xrandr", *[word for output in outputs for word in ("--output", output, "--off")])

    def screenshot(self):
        size = re.search(rb"Width: (\d+)\s+Height: (\d+)", self.run("xwininfo", "-root")).groups()
        # Not xwd, which garbles pixels when windows of several depths are on screen.
        return Picture(map(int, size), self.run("import", "-window", "root", "-depth", "8", "bgra:-"))
