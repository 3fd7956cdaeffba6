"""A month of the program's use, in minutes: the real program in a desktop of its own, on clocks that leap over the time in
which nothing happens, so that all its timers run as in a month. Every day has a new briefing; the panel is opened five
times an hour for twenty hours a day, by pointer and by broadcast, and used: cards swiped, todos written down, ticked and
given reminders, older days looked at, a player listened to, the settings opened and the theme changed.

month.py [--openings N]: prints what the program takes after the first hour and after every day, and fails when it grew.
month.py --short: only whether something is lost from one opening to the next. The environment names the program (DAWNLY) and the library that makes its clocks leap (LEAP_CLOCK)."""

import argparse
import ctypes
import mmap
import os
import random
import statistics
import struct
import sys
import time
import typing

sys.path[:0] = [os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", folder) for folder in ("e2e", "support")]
from desktop import AWAY, BRIEF_LEFT, COLUMNS_TOP, HEADER_Y, NOTCH, PANEL_RIGHT, TODO_LEFT, Desktop  # noqa: E402

OPENINGS_AN_HOUR, OPENINGS_A_DAY, DAYS = 5, 100, 30
HOUR, DAY = 3600, 86400
# The content of a folded panel is given up after half a minute.
LONG_FOLDED = 40
LARGEST_GROWTH = 1.05
KNOWN_DAYS = 30  # of briefings, before the first

CARD_Y = tuple(COLUMNS_TOP + 56 + 41 * card for card in range(3))
FIELD, TICK_X, TEXT_X, FIRST_ROW = (TODO_LEFT + 60, COLUMNS_TOP + 52), TODO_LEFT + 20, TODO_LEFT + 90, COLUMNS_TOP + 90
GEAR = (PANEL_RIGHT - 30 - 20 - 13, HEADER_Y)
PAGES = ((80, 30), (80, 64), (80, 98), (80, 132))  # in the settings window
SWATCHES = tuple((288 + 74 * i, 75) for i in range(3))

BRIEFING = """# {name}
### Schedule
- **Stand-up {day}** with the team at 9:30
- **Review {day}** of the budget, see [the sheet](https://example.com/{day})
- **Lunch {day}** with Alex
### Inbox
- Letter {day} from the bank needs an answer
### Action Items
- [ ] 💼 Send the deck {day}
"""


class LeapClock:
    """The other end of LeapClock.cpp."""

    FIELDS = ("leapt", "asked", "answered", "heapBytes", "wakeUps", "bytesToLose", "filesToLose", "threadsToLose",
              "timerToLose")

    def __init__(self, path):
        with open(path, "wb") as file:
            file.write(bytes(8 * len(self.FIELDS)))
        with open(path, "r+b") as file:
            self.memory = mmap.mmap(file.fileno(), 0)

    def __getitem__(self, field):
        return struct.unpack_from("q", self.memory, 8 * self.FIELDS.index(field))[0]

    def __setitem__(self, field, value):
        struct.pack_into("q", self.memory, 8 * self.FIELDS.index(field), value)

    def leap(self, seconds):
        self["leapt"] += int(1e9 * seconds)
        time.sleep(0.012)

    def now(self):
        return time.time() + self["leapt"] / 1e9

    def heap(self):
        """Bytes in use of the program's heap."""
        self["asked"] += 1
        Desktop.wait_for(lambda: self["answered"] == self["asked"], "the heap to be counted")
        return self["heapBytes"]


class Hand:
    """The pointer and the keyboard, without a program started for each movement."""

    def __init__(self, desktop):
        self.x11, self.test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(desktop.environment["DISPLAY"].encode()))

    def flush(self, wait=0.012):
        self.x11.XFlush(self.display)
        time.sleep(wait)

    def move(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, -1, int(x), int(y), ctypes.c_ulong(0))
        self.flush()

    def button(self, down, number=1):
        self.test.XTestFakeButtonEvent(self.display, number, down, ctypes.c_ulong(0))
        self.flush()

    def click(self, x, y, number=1):
        self.move(x, y)
        self.button(1, number)
        self.button(0, number)

    def drag(self, start, end, steps=6):
        self.move(*start)
        self.button(1)
        for i in range(1, steps + 1):
            self.move(start[0] + (end[0] - start[0]) * i / steps, start[1] + (end[1] - start[1]) * i / steps)
        self.button(0)

    def key(self, *names):
        for name in names:
            code = self.x11.XKeysymToKeycode(self.display, ctypes.c_ulong(self.x11.XStringToKeysym(name.encode())))
            for down in (1, 0):
                self.test.XTestFakeKeyEvent(self.display, code, down, ctypes.c_ulong(0))
            self.flush(0.004)


class Month:
    def __init__(self):
        self.random = random.Random(1)
        self.desktop = d = Desktop(window_manager=True)
        d.start("dunst", "-conf", "/dev/null")
        self.clock, self.hand = LeapClock(d.home + "/leap-clock"), Hand(d)
        with open(d.framebuffer, "rb") as file:
            self.screen = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        self.openings, self.player = 0, None
        for day in range(1 - KNOWN_DAYS, 1):
            self.write_briefing(day)
        d.program = d.start("env", "LD_PRELOAD=" + os.environ["LEAP_CLOCK"], "DAWNLY_LEAP_CLOCK=" + d.home + "/leap-clock",
                            os.environ["DAWNLY"])
        d.wait_for(lambda: d.report(patience=0.3)["panelVisible"], "the panel to show")
        d.wait_for(lambda: (d.report()["briefings"] or 0) >= KNOWN_DAYS, "the briefings")
        self.wallpaper = self.pixel(5, 795)

    def close(self):
        self.desktop.close()

    def write_briefing(self, day):
        name = time.strftime("%Y-%m-%d", time.localtime(self.clock.now() + day * DAY))
        self.desktop.write_briefing(name + ".md", BRIEFING.format(name=name, day=name[5:]))

    def pixel(self, x, y):
        header, stride = int.from_bytes(self.screen[0:4], "big"), int.from_bytes(self.screen[48:52], "big")
        at = header + 12 * int.from_bytes(self.screen[76:80], "big") + y * stride + 4 * x
        return self.screen[at:at + 3]

    def is_open(self):
        return self.pixel(NOTCH[0] + 60, 140) != self.wallpaper

    def wait(self, condition, what, leap=0.1):
        """Lets time pass until the condition holds."""
        for _ in range(300):
            if condition():
                return
            self.clock.leap(leap)
        if "PICTURES" in os.environ:
            self.desktop.run("import", "-window", "root", os.path.join(os.environ["PICTURES"], "month.png"))
        raise AssertionError("waited in vain for " + what)

    # What the user does.

    def open(self):
        if self.openings % 4 == 3:
            self.desktop.signal("expand")
        self.hand.move(*NOTCH)
        if self.openings < OPENINGS_AN_HOUR:
            time.sleep(0.6)  # all frames of the motion, for what they leave in the toolkit's caches
        self.wait(self.is_open, "the panel to unfold")
        self.clock.leap(1)

    def fold(self):
        # A panel that a broadcast opened folds when the pointer moves elsewhere a while later, and a menu that came too
        # late for its keys has opened something that waits for text.
        for step in range(400):
            self.hand.move(AWAY[0] + 10 * (step % 5), AWAY[1])
            self.clock.leap(0.3)
            if not self.is_open():
                break
            if step % 40 == 39:
                self.hand.key("Escape")
        self.clock.leap(1)
        self.wait(lambda: not self.is_open(), "the panel to fold")

    def swipe(self):
        start = (BRIEF_LEFT + 200, self.random.choice(CARD_Y))
        self.hand.drag(start, (start[0] + self.random.choice((-90, 90)), start[1]))
        self.clock.leap(0.6)

    def write_todo(self):
        self.hand.click(*FIELD)
        self.hand.key(*self.random.choices("abcdefghij", k=8), "Return")
        self.clock.leap(0.6)

    def tick_todo(self):
        self.hand.click(TICK_X, FIRST_ROW)
        self.clock.leap(0.6)

    def remind(self):
        """The menu, its third row, and the first time there."""
        self.hand.click(TEXT_X, FIRST_ROW, 3)
        for keys in (("Down", "Down", "Down", "Return"), ("Down", "Return")):
            self.clock.leap(0.3)
            time.sleep(0.05)
            self.hand.key(*keys)
        self.clock.leap(0.3)

    def look_back(self):
        self.hand.key("Left", "Left")
        self.clock.leap(0.6)
        self.hand.key("Right", "Right")
        self.clock.leap(0.6)

    def change_settings(self):
        """Opens the settings from the panel, looks at every page and chooses another theme."""
        self.hand.click(*GEAR)
        self.wait(lambda: len(self.desktop.search("Dawnly")) > 1, "the settings")
        self.clock.leap(0.3)
        window = (300, 140)
        for page in (*PAGES, PAGES[0]):
            self.hand.click(window[0] + page[0], window[1] + page[1])
            self.clock.leap(0.3)
        swatch = self.random.choice(SWATCHES)
        self.hand.click(window[0] + swatch[0], window[1] + swatch[1])
        self.clock.leap(0.3)
        self.desktop.key("ctrl+w")
        self.wait(lambda: len(self.desktop.search("Dawnly")) == 1, "the settings to close")

    def listen(self):
        """A player starts and is there until the next opening."""
        support = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support")
        self.player = self.desktop.start("/usr/bin/python3", support + "/mpris_player.py", "spotify", "Weightless",
                                         "Marconi Union", "")
        time.sleep(0.4)
        self.clock.leap(2.5)
        time.sleep(0.1)

    def use(self):
        """One opening of the panel and what follows until the next."""
        number, start = self.openings, self.clock.now()
        if number % OPENINGS_A_DAY == 0 and number:
            self.write_briefing(0)
        if self.player:
            self.player.terminate()
            self.player.wait()
            self.player = None
        self.open()
        if number % 2 == 0:
            self.swipe()
        if number % 4 == 0:
            self.write_todo()
        if number % 4 == 2:
            self.tick_todo()
        if number % 10 == 5:
            self.remind()
        if number % 10 == 7:
            self.look_back()
        if number % 50 == 3:
            self.listen()
        if number % 50 == 2:
            self.change_settings()
        self.fold()
        self.openings += 1
        self.rest()
        spare = HOUR / OPENINGS_AN_HOUR - (self.clock.now() - start)
        if self.openings % OPENINGS_A_DAY == 0:
            spare += DAY - OPENINGS_A_DAY // OPENINGS_AN_HOUR * HOUR
        self.clock.leap(max(spare, 0))

    # What the program takes.

    def wakeups(self, seconds):
        """How often the program wakes in a second of being folded, at the world's own pace."""
        before = self.clock["wakeUps"]
        time.sleep(seconds)
        return (self.clock["wakeUps"] - before) / seconds

    def rest(self):
        """Until the content of the folded panel is given up and its memory returned."""
        for seconds in (LONG_FOLDED, 2, 2):
            self.clock.leap(seconds)
            time.sleep(0.03)

    def sample(self, wakeup_seconds):
        self.rest()
        process = "/proc/%d/" % self.desktop.program.pid
        fields = {}
        with open(process + "smaps_rollup") as rollup:
            for line in rollup.readlines()[1:]:
                name, value = line.split()[:2]
                fields[name.rstrip(":")] = int(value)
        return Sample(self.openings, fields["Rss"], fields["Pss"], fields["Private_Clean"] + fields["Private_Dirty"],
                      self.clock.heap() / 1024, len(os.listdir(process + "fd")), len(os.listdir(process + "task")),
                      self.wakeups(wakeup_seconds))


class Sample(typing.NamedTuple):
    """What the folded program takes; memory in KiB."""

    openings: int
    resident: int
    proportional: int
    unique: int
    heap: float
    files: int
    threads: int
    wakeups: float

    def __str__(self):
        return "%8d %9.1f %9.1f %9.1f %9.2f %6d %8d %11.1f" % (
            self.openings, *(size / 1024 for size in self[1:5]), *self[5:])

    def growth(self, start):
        """What there is too much of since the start, in words."""
        found = []
        if self.resident > LARGEST_GROWTH * start.resident:
            found.append("resident memory grew by %.1f %%" % (100 * (self.resident / start.resident - 1)))
        found += ["more " + name for name in ("files", "threads") if getattr(self, name) > getattr(start, name)]
        # The program looks for the pointer 20 times a second; anything else is rare.
        if self.wakeups > start.wakeups + 2:
            found.append("more wake-ups")
        return found


def month_of_use(openings):
    month = Month()
    try:
        print("openings  resident  proport.    unique      heap  files  threads  wake-ups/s   (memory in MB, folded)")
        while month.openings < OPENINGS_AN_HOUR:
            month.use()
        start = month.sample(10)
        print(start, flush=True)
        while month.openings < openings:
            month.use()
            if month.openings % OPENINGS_A_DAY == 0:
                print(month.sample(1), flush=True)
        end = month.sample(10)
        print(end)
        print("resident memory: %+.1f %% since the first hour" % (100 * (end.resident / start.resident - 1)))
        return end.growth(start)
    finally:
        month.close()


class LeakWatch:
    """Some openings of the panel, all alike, and what stays behind of them."""

    WARM_UP, OPENINGS = 16, 18
    # Bytes at an opening: what a kilobyte lost at every one stands out from.
    LARGEST_LOSS = 800

    def __init__(self, month):
        self.month = month
        for _ in range(self.WARM_UP):
            self.open_once()

    def open_once(self):
        """The bytes in use afterwards."""
        month = self.month
        month.open()
        month.look_back()
        month.hand.click(TEXT_X, FIRST_ROW, 3)
        month.clock.leap(0.3)
        month.hand.key("Escape")
        month.fold()
        month.openings += 1
        month.rest()
        return month.clock.heap()

    def bytes_lost(self, planted=0):
        """At every opening. `planted` bytes are lost on purpose."""
        sizes = []
        for _ in range(self.OPENINGS):
            self.month.clock["bytesToLose"] = planted
            sizes.append(self.open_once())
        edge = self.OPENINGS // 4
        lost = statistics.median(sizes[-edge:]) - statistics.median(sizes[:edge])
        return lost / (self.OPENINGS - edge)


def short_check():
    """Nothing is lost over some openings, and what is lost on purpose is noticed."""
    month = Month()
    try:
        watch, found = LeakWatch(month), []
        start = month.sample(2)
        lost = watch.bytes_lost()
        end = month.sample(2)
        print("%.0f bytes lost at every opening" % lost)
        if lost > LeakWatch.LARGEST_LOSS:
            found.append("the heap grows")
        found += end.growth(start)

        planted = watch.bytes_lost(1024)
        print("%.0f bytes when 1024 are lost on purpose" % planted)
        if planted <= LeakWatch.LARGEST_LOSS:
            found.append("a planted leak was not noticed")
        for field, value, name in (("filesToLose", 1, "more files"), ("threadsToLose", 1, "more threads"),
                                   ("timerToLose", 20, "more wake-ups")):
            month.clock[field] = value
            month.clock.leap(1)
            if name not in month.sample(1).growth(end):
                found.append("a planted leak was not noticed: " + name)
        return found
    finally:
        month.close()


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("--openings", type=int, default=OPENINGS_A_DAY * DAYS)
    arguments.add_argument("--short", action="store_true", help="half a minute: that nothing is lost from one opening "
                           "to the next, and that this check would notice")
    chosen = arguments.parse_args()
    found = short_check() if chosen.short else month_of_use(chosen.openings)
    print("; ".join(found) or "nothing grew")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
