"""A desktop of its own for one end-to-end test: an X server without a screen, a session bus, a home folder, and the
real program, driven by a real pointer and keyboard and judged by its files, its state report and its pixels."""

import json
import os
import shutil
import signal
import struct
import subprocess
import tempfile
import time
import uuid

REPORT = "/tmp/dawnly-state.json"
REFERENCE_DATE = 978307200  # the dates of the store files count from here, in seconds since 1970
WIDTH, HEIGHT = 1280, 800
PANEL_LEFT, PANEL_RIGHT = (WIDTH - 780) // 2, (WIDTH + 780) // 2
CARD_RIGHT = PANEL_RIGHT - 30  # within the window's margin
# The columns: the briefing's left and the todos' right one.
BRIEF_LEFT, BRIEF_RIGHT = PANEL_LEFT + 30 + 20, PANEL_LEFT + 30 + 20 + 412
TODO_LEFT, TODO_RIGHT = CARD_RIGHT - 20 - 254, CARD_RIGHT - 20
# The middle of the header, and where both columns begin below it.
HEADER_Y, COLUMNS_TOP = 62, 104
NOTCH = (WIDTH // 2, 10)
AWAY = (100, 700)


def todo(text, **fields):
    """A todo as the file has it."""
    return {"id": str(uuid.uuid4()).upper(), "text": text, "done": False,
            "createdAt": time.time() - REFERENCE_DATE, **fields}


class Screenshot:
    """The pixels of the whole screen, as the X Window Dump format (version 7, little-endian true colour) has them."""

    def __init__(self, dump):
        fields = struct.unpack(">25I", dump[:100])
        header_size, _, _, _, self.width, self.height = fields[:6]
        self.bytes_per_pixel, self.stride, colours = fields[11] // 8, fields[12], fields[19]
        self.pixels = dump[header_size + 12 * colours:]
        self.wallpaper = self.at(5, self.height - 5)

    def at(self, x, y):
        start = y * self.stride + self.bytes_per_pixel * x
        blue, green, red = self.pixels[start:start + 3]
        return red, green, blue

    def is_wallpaper(self, x, y):
        return self.at(x, y) == self.wallpaper

    def column(self, x, top, bottom):
        return [self.at(x, y) for y in range(top, bottom)]

    def lowest_panel_row(self):
        """The last row of the panel at the screen's middle."""
        y = 0
        while y + 1 < self.height and not self.is_wallpaper(self.width // 2, y + 1):
            y += 1
        return y

    def card_count(self):
        """How many cards the open section shows, counted by their surfaces in a column that no text reaches."""
        x, beside = BRIEF_RIGHT - 12 - 5, BRIEF_RIGHT - 6  # inside the cards, and right of them
        cards, run = 0, 0
        for y in range(COLUMNS_TOP, self.lowest_panel_row() - 20):
            lighter = sum(self.at(x, y)) - sum(self.at(beside, y)) >= 12
            run = run + 1 if lighter else 0
            cards += run == 20  # a symbol in the column is smaller than any card
        return cards


class Desktop:
    """On a desktop for a `first_start` the program finds no settings of its own."""

    def __init__(self, compositor=False, window_manager=False, calendar_access="denied", settings=None,
                 first_start=False):
        self.home = tempfile.mkdtemp(prefix="dawnly-e2e-")
        self.briefings = os.path.join(self.home, "briefings")
        os.mkdir(self.briefings)
        self.processes = []
        self.environment = dict(os.environ, HOME=self.home, XDG_CONFIG_HOME=self.home + "/config",
                                XDG_STATE_HOME=self.home + "/state", XDG_DATA_HOME=self.home + "/data",
                                XDG_RUNTIME_DIR=self.home, LC_ALL="C.UTF-8", QT_QUICK_BACKEND="software")
        self.environment.pop("WAYLAND_DISPLAY", None)
        if not first_start:
            # Dark, so that pixels do not depend on what is behind the panel.
            # Not the first start, which would write a welcome briefing and open a tour in front of everything.
            settings = {"briefingsFolderPath": self.briefings, "notchTheme": "dark", "didWriteWelcomeBrief": True,
                        "didCompleteOnboarding": True, **(settings or {})}
            if calendar_access is not None:  # otherwise the program asks
                settings["calendarAccess"] = calendar_access
            os.makedirs(self.home + "/config/dawnly")
            with open(self.home + "/config/dawnly/defaults.json", "w") as defaults:
                json.dump(settings, defaults)
        self._start_server()
        self._start_bus()
        self.run("xsetroot", "-solid", "#c84090")
        if window_manager:
            self.start("openbox", "--sm-disable")
            self.wait_for(lambda: b"# " in self.run("xprop", "-root", "_NET_CLIENT_LIST"), "the window manager")
        if compositor:
            self.start("picom", "--backend", "xrender", "--config", "/dev/null")
            time.sleep(1)
        self.move(*AWAY)
        if os.path.lexists(REPORT):
            os.remove(REPORT)
        self.program = None

    # The pieces of the desktop.

    def _start_server(self):
        # The server keeps its screen in a file, as an X Window Dump: what a monitor would show, shapes and all.
        self.framebuffer = os.path.join(self.home, "Xvfb_screen0")
        self._run_server("Xvfb", "-fbdir", self.home, "-screen", "0", "%dx%dx24" % (WIDTH, HEIGHT))

    def _run_server(self, *command):
        """Starts an X server that chooses a display number of its own."""
        read, write = os.pipe()
        self.start(*command, "-displayfd", str(write), "-nolisten", "tcp", "-noreset", pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as display:
            self.environment["DISPLAY"] = ":" + display.readline().strip()

    def _start_bus(self):
        self.bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus.stdout.readline().decode().strip()

    def start(self, *command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", subprocess.DEVNULL)
        process = subprocess.Popen(command, env=self.environment, **options)
        self.processes.append(process)
        return process

    def run(self, *command):
        return subprocess.run(command, env=self.environment, check=True, stdout=subprocess.PIPE).stdout

    def ask(self, *command):
        """What a command says, which may fail."""
        return subprocess.run(command, env=self.environment, check=False, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL).stdout

    def start_program(self, at=None):
        """Starts it now, or at another time, such as "2026-11-23 09:12:05", which goes on from there."""
        clock = []
        if at:
            then = int(self.run("date", "--date", at, "+%s"))
            library = os.path.join(os.path.dirname(os.environ["DAWNLY"]), "libsunpane_shifted_clock.so")
            os.stat(library)  # or the loader would only warn
            clock = ["env", "LD_PRELOAD=" + library, "DAWNLY_CLOCK_AHEAD=%d" % round(then - time.time())]
        self.program = self.start(*clock, os.environ["DAWNLY"], stderr=None)
        # A program that has just started misses the question.
        self.wait_for(lambda: self.report(patience=0.3)["panelVisible"], "the panel to show")
        return self.program

    def close(self):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.send_signal(signal.SIGTERM)
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                process.kill()
            if process.stdout:
                process.stdout.close()
        shutil.rmtree(self.home, ignore_errors=True)

    # What a user and an agent do.

    def set_defaults(self, **settings):
        """Changes settings, of which the program must not be writing any."""
        path = self.home + "/config/dawnly/defaults.json"
        with open(path) as defaults:
            settings = {**json.load(defaults), **settings}
        with open(path, "w") as defaults:
            json.dump(settings, defaults)

    def write_briefing(self, name, text):
        with open(os.path.join(self.briefings, name), "w") as briefing:
            briefing.write(text)

    def write_todos(self, *todos):
        with open(self.briefings + "/todos.json", "w") as file:
            json.dump({"todos": todos, "lastImportDay": time.strftime("%Y-%m-%d"), "dismissed": []}, file)

    def write_calendar(self, name, *events):
        """A calendar of events: (summary, start, end, further lines), the times in seconds since 1970."""
        folder = self.home + "/data/dawnly/calendars"
        os.makedirs(folder, exist_ok=True)
        lines = ["BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//Dawnly//Test//EN"]
        for index, (summary, start, end, *further) in enumerate(events):
            lines += ["BEGIN:VEVENT", "UID:%s-%d@test" % (name, index), "SUMMARY:" + summary]
            for key, at in (("DTSTAMP", start), ("DTSTART", start), ("DTEND", end)):
                lines.append(key + ":" + time.strftime("%Y%m%dT%H%M%SZ", time.gmtime(at)))
            lines += [*further, "END:VEVENT"]
        # As a whole, or the program might read half of it.
        with open(folder + "/.new", "w") as file:
            file.write("\r\n".join(lines + ["END:VCALENDAR", ""]))
        os.rename(folder + "/.new", folder + "/" + name + ".ics")

    def catch_addresses(self):
        """From now on, what the program opens in a browser is listed by `opened`."""
        os.makedirs(self.home + "/bin")
        with open(self.home + "/bin/xdg-open", "w") as script:
            # What the program sets for itself alone shows in front of the address.
            script.write('#!/bin/sh\nprintf "%%s\\n" "${QV4_FORCE_INTERPRETER:+ours:}$1" >>"%s/opened"\n' % self.home)
        os.chmod(self.home + "/bin/xdg-open", 0o755)
        self.environment["PATH"] = self.home + "/bin:" + self.environment["PATH"]

    def opened(self):
        if not os.path.exists(self.home + "/opened"):
            return []
        with open(self.home + "/opened") as file:
            return file.read().split()

    def move(self, x, y):
        self.run("xdotool", "mousemove", str(x), str(y))

    def unfold(self):
        """Reaches for the notch and waits until the panel is open and its springs are at rest."""
        self.move(*NOTCH)
        self.wait_for(lambda: self.report()["expanded"], "the panel to unfold")
        time.sleep(0.9)

    def click(self, x, y, button=1):
        self.run("xdotool", "mousemove", str(x), str(y), "click", str(button))

    def drag(self, start, end, hold=0.0, steps=12, release=True):
        """Presses at one place, waits, and moves to another with the button down."""
        self.run("xdotool", "mousemove", str(start[0]), str(start[1]), "mousedown", "1")
        time.sleep(hold)
        for i in range(1, steps + 1):
            self.move(start[0] + (end[0] - start[0]) * i // steps, start[1] + (end[1] - start[1]) * i // steps)
            time.sleep(0.01)
        if release:
            self.run("xdotool", "mouseup", "1")

    def key(self, *names):
        self.run("xdotool", "key", *names)

    def flick(self, start, end, steps=40):
        """One quick movement, as a mouse reports it: many small steps without a rest."""
        moves = []
        for i in range(steps + 1):
            x = start[0] + (end[0] - start[0]) * i // steps
            y = start[1] + (end[1] - start[1]) * i // steps
            moves += ["mousemove", str(x), str(y), "sleep", "0.004"]
        self.run("xdotool", *moves)

    # What can be seen.

    def signal(self, name):
        self.run("dbus-send", "--session", "--type=signal", "/", "app.dawnly.Dawnly." + name)

    def report(self, patience=2):
        """Asks the program for its state and reads the answer; an empty one when none comes for that many seconds."""
        if os.path.lexists(REPORT):
            os.remove(REPORT)
        self.signal("report")
        end = time.monotonic() + patience
        while time.monotonic() < end:
            if os.path.exists(REPORT):
                with open(REPORT) as report:
                    return json.load(report)
            time.sleep(0.01)
        return {"panelVisible": False, "expanded": None, "briefings": None}

    def defaults(self):
        """The user's settings as they are kept."""
        with open(self.home + "/config/dawnly/defaults.json") as file:
            return json.load(file)

    def read(self, name):
        """A JSON file of the briefings folder; {} when it is not there or not whole for half a second."""
        end = time.monotonic() + 0.5
        while True:
            try:
                with open(os.path.join(self.briefings, name)) as file:
                    return json.load(file)
            except (FileNotFoundError, ValueError):
                if time.monotonic() >= end:
                    return {}
                time.sleep(0.02)

    def todos(self):
        """The texts on the todo list, as its file has them."""
        path = os.path.join(self.briefings, "todos.json")
        if not os.path.exists(path):
            return []
        with open(path) as file:
            return [todo["text"] for todo in json.load(file)["todos"]]

    def screenshot(self):
        with open(self.framebuffer, "rb") as dump:
            return Screenshot(dump.read())

    def search(self, title):
        """The windows on screen that bear this title."""
        return self.ask("xdotool", "search", "--onlyvisible", "--name", "^" + title + "$").split()

    def focused_window(self):
        """Empty while nothing has the keyboard, as when a window has just gone."""
        return self.ask("xdotool", "getwindowfocus").strip()

    def await_flags(self, **expected):
        """Waits until the flags are on the cards of these keys, such as prio=["alpha"], and on no others."""
        def flags():
            state = self.read("itemflags.json")
            return {kind: sorted(state[kind]) for kind in ("prio", "cleared", "hidden") if state.get(kind)}

        self.await_value(flags, {kind: sorted(keys) for kind, keys in expected.items() if keys}, "the flags")

    def await_value(self, value, expected, what, seconds=3):
        """Waits until it has that value; a failure tells the one that it has."""
        try:
            self.wait_for(lambda: value() == expected, what, seconds)
        except AssertionError as failure:
            raise AssertionError("%s to be %r: %r" % (failure, expected, value())) from None

    @staticmethod
    def wait_for(condition, what, seconds=10):
        """Waits until the condition holds and returns how long that took."""
        start = time.monotonic()
        while True:
            if condition():
                return time.monotonic() - start
            if time.monotonic() - start > seconds:
                raise AssertionError("waited %g s in vain for %s" % (seconds, what))
            time.sleep(0.02)
