"""Other programs on the desktop of a test: a window that notes the keys it gets; a curtain that hides the whole screen;
a bar across its top; an owner of Control+Space. Run as a program, this file is one of the last three."""

import ctypes
import os
import re
import sys
import time


class Typewriter:
    """A window that notes every text key it gets."""

    def __init__(self, desktop, title="Neighbour", geometry="300x200+20+560"):
        self.desktop, self.title = desktop, title
        self.log = os.path.join(desktop.home, title + ".log")
        with open(self.log, "w") as log:
            self.process = desktop.start("stdbuf", "-oL", "xev", "-name", title, "-geometry", geometry, "-event",
                                         "keyboard", stdout=log)
        desktop.wait_for(lambda: desktop.search(title), "the window of " + title)
        self.window = desktop.search(title)[0]

    def activate(self):
        self.desktop.run("xdotool", "windowactivate", "--sync", self.window)
        self.desktop.wait_for(self.has_keyboard, self.title + " to have the keyboard")

    def has_keyboard(self):
        return self.desktop.focused_window() == self.window

    def presses(self, pattern):
        """What `pattern` finds in the key presses that came here."""
        with open(self.log) as log:
            events = log.read().split("\n\n")
        found = [re.search(pattern, event) for event in events if event.startswith("KeyPress")]
        return [match.group(1) for match in found if match]

    def typed(self):
        return "".join(self.presses(r"XLookupString gives 1 bytes: \(..\) \"(.)\""))

    def full_screen(self, on=True):
        self.desktop.run("wmctrl", "-i", "-r", self.window, "-b", ("add" if on else "remove") + ",fullscreen")

    def close(self):
        self.process.terminate()
        self.process.wait(5)


def start(desktop, kind):
    """Starts this file as a program and waits until it has what it wants."""
    process = desktop.start(sys.executable, __file__, kind, stdout=-1)
    assert process.stdout.readline() == b"ready\n"
    return process


def main(kind):
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = display_type = ctypes.c_void_p
    window_type, integer = ctypes.c_ulong, ctypes.c_int
    x11.XDefaultRootWindow.restype = x11.XCreateSimpleWindow.restype = window_type
    for function, *arguments in (
            (x11.XDefaultRootWindow,), (x11.XSync, integer), (x11.XMapRaised, window_type),
            (x11.XGrabKey, integer, ctypes.c_uint, window_type, integer, integer, integer),
            (x11.XCreateSimpleWindow, window_type, integer, integer, *[ctypes.c_uint] * 3, *[ctypes.c_ulong] * 2),
            (x11.XChangeWindowAttributes, window_type, ctypes.c_ulong, ctypes.c_void_p)):
        function.argtypes = [display_type, *arguments]
    display = x11.XOpenDisplay(None)
    root = x11.XDefaultRootWindow(display)
    if kind == "owner":
        space, control, num_lock, asynchronous = 65, 4, 16, 1
        # Only together with a lock key: whoever takes the key must notice even this.
        x11.XGrabKey(display, space, control | num_lock, root, 0, asynchronous, asynchronous)
    else:
        white = 0xFFFFFF
        window = x11.XCreateSimpleWindow(display, root, 0, 0, 4000, 4000 if kind == "curtain" else 100, 0, white, white)
        attributes = (ctypes.c_ulong * 15)()  # an XSetWindowAttributes; its override_redirect is the 12th of its words
        attributes[11] = 1
        x11.XChangeWindowAttributes(display, window, 1 << 9, attributes)
        x11.XMapRaised(display, window)
    x11.XSync(display, 0)
    print("ready", flush=True)
    time.sleep(600)


if __name__ == "__main__":
    main(sys.argv[1])
