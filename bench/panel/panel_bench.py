"""Start and memory of the folded panel beside a bare window of the same toolkit, size and renderer and beside other
desktop panels, and idle cost and readiness beside the bare window, in one run. Usage: panel_bench.py DIRECTORY-OF-PROGRAMS"""

import ctypes
import mmap
import os
import statistics
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../tests/e2e"))
import peers  # noqa: E402
from desktop import AWAY, NOTCH, Desktop  # noqa: E402

STARTS = 15
HOVERS = 25
IDLE_SECONDS = 30
MEMORY_ROUNDS = 3
# The content of a folded panel is given up after half a minute.
FOLDED_FOR = 35
BESIDE_NOTCH = (NOTCH[0] - 100, 160)


def offset(screen, x, y):
    """Where the pixel is in the server's screen file."""
    header = int.from_bytes(screen[0:4], "big")
    stride, colours = int.from_bytes(screen[48:52], "big"), int.from_bytes(screen[76:80], "big")
    return header + 12 * colours + y * stride + 4 * x


def first_frame(desktop, command):
    """Seconds from starting the command to a black pixel where the notch is, and the process."""
    with open(desktop.framebuffer, "rb") as file, mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as screen:
        at = offset(screen, 640, 5)
        assert screen[at:at + 3] != b"\0\0\0"
        start = time.monotonic()
        process = desktop.start(*command)
        while screen[at:at + 3] != b"\0\0\0":
            if time.monotonic() - start > 20:
                raise SystemExit("nothing was drawn")
            time.sleep(0.0005)
        return time.monotonic() - start, process


class Pointer:
    """Moves the pointer without starting a program for it."""

    def __init__(self, desktop):
        self.x11, self.test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(desktop.environment["DISPLAY"].encode()))

    def move(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, -1, x, y, ctypes.c_ulong(0))
        self.x11.XFlush(self.display)


def first_frame_after_hover(desktop, y):
    """Seconds from the pointer's move onto the notch to the first change of the pixel at the screen's middle and row y."""
    pointer, times = Pointer(desktop), []
    with open(desktop.framebuffer, "rb") as file, mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as screen:
        at = offset(screen, 640, y)
        for round_number in range(HOVERS):
            pointer.move(20, 780)
            # Not in step with any timer.
            time.sleep(1.2 + round_number * 0.0037)
            before = screen[at:at + 3]
            start = time.monotonic()
            pointer.move(641, 8)
            while screen[at:at + 3] == before:
                if time.monotonic() - start > 5:
                    raise SystemExit("nothing happened when the pointer reached the notch")
                time.sleep(0.0002)
            times.append(time.monotonic() - start)
    pointer.move(20, 780)
    return times


def print_hover(desktop, dawnly, bare):
    _, panel = first_frame(desktop, dawnly)
    time.sleep(3)
    ours = first_frame_after_hover(desktop, 36)  # just below the folded notch
    # The pointer jumps, so the first time the content is not made yet.
    print("pointer jumps onto the notch for the first time: %.1f ms to the first frame" % (1000 * ours.pop(0)))
    stop(desktop, panel)
    _, peer = first_frame(desktop, bare)
    time.sleep(3)
    theirs = first_frame_after_hover(desktop, 36)
    stop(desktop, peer)
    print("pointer moved to first frame: panel %.1f ms (longest %.1f), bare window %.1f ms (longest %.1f), ratio %.2f "
          "(median of %d)" % (1000 * statistics.median(ours), 1000 * max(ours), 1000 * statistics.median(theirs),
                              1000 * max(theirs), statistics.median(ours) / statistics.median(theirs), HOVERS))


def stop(desktop, process):
    process.terminate()
    process.wait()
    time.sleep(0.3)


def memory(process):
    """Resident and proportional set size in KiB."""
    fields = {}
    with open("/proc/%d/smaps_rollup" % process.pid) as rollup:
        for line in rollup.readlines()[1:]:
            name, value = line.split()[:2]
            fields[name.rstrip(":")] = int(value)
    return fields["Rss"], fields["Pss"]


def processor_time(process):
    """Seconds on a processor, of all threads."""
    total = 0
    tasks = "/proc/%d/task" % process.pid
    for task in os.listdir(tasks):
        with open(os.path.join(tasks, task, "schedstat")) as stat:
            total += int(stat.read().split()[0])
    return total / 1e9


def print_starts(desktop, programs):
    """Start to first frame and memory of all programs in turn, so that whatever else the machine does meets all."""
    starts, sizes = {name: [] for name in programs}, {name: [] for name in programs}
    for round_number in range(STARTS + 1):
        for name, command in programs.items():
            seconds, process = first_frame(desktop, command)
            if round_number:  # the first round fills the file caches
                starts[name].append(1000 * seconds)
            if 1 <= round_number <= MEMORY_ROUNDS:
                time.sleep(3)
                sizes[name].append(memory(process))
            stop(desktop, process)
    print("%-12s %s" % ("", "first frame, median (spread)   resident   proportional memory"))
    for name, times in starts.items():
        resident, proportional = (statistics.median(size[kind] for size in sizes[name]) / 1024 for kind in (0, 1))
        print("%-12s %6.0f ms (%.0f to %.0f) %12.1f MB %10.1f MB" % (
            name, statistics.median(times), min(times), max(times), resident, proportional))
    for peer in list(programs)[1:]:
        ratios = [a / b for a, b in zip(starts["dawnly"], starts[peer])]
        resident, proportional = (
            statistics.median(size[kind] for size in sizes["dawnly"]) / statistics.median(size[kind] for size in sizes[peer])
            for kind in (0, 1))
        print("beside %s: start %.2f, resident memory %.2f, proportional %.2f" % (
            peer, statistics.median(ratios), resident, proportional))


def print_memory_after_opening(desktop, dawnly, bare):
    """Of the folded panel, when it was open and used and its content has been given up again."""
    sizes = []
    for command in (dawnly, bare):
        _, process = first_frame(desktop, command)
        time.sleep(2)
        for place in (NOTCH, BESIDE_NOTCH, NOTCH):
            desktop.move(*place)
            time.sleep(1.5)
        desktop.move(*AWAY)
        time.sleep(FOLDED_FOR)
        sizes.append(memory(process))
        stop(desktop, process)
    for kind, panel, peer in zip(("resident", "proportional"), *sizes):
        print("%s memory %d s after it was open: panel %.1f MB, bare window %.1f MB, ratio %.2f" % (
            kind, FOLDED_FOR, panel / 1024, peer / 1024, panel / peer))


def print_idle_cost(desktop, dawnly, bare):
    _, panel = first_frame(desktop, dawnly)
    peer = desktop.start(*bare, "780", "736", "--poll")
    time.sleep(5)
    before = processor_time(panel), processor_time(peer)
    time.sleep(IDLE_SECONDS)
    spent = processor_time(panel) - before[0], processor_time(peer) - before[1]
    print("idle for %d s: panel %.1f ms, bare polling window %.1f ms of processor time, ratio %.2f" % (
        IDLE_SECONDS, 1000 * spent[0], 1000 * spent[1], spent[0] / spent[1]))


def main(programs):
    desktop = Desktop(window_manager=True)
    sample = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../packaging/sample-briefing.md")
    with open(sample) as briefing:
        desktop.write_briefing(time.strftime("%Y-%m-%d.md"), briefing.read())
    commands = peers.commands(programs, desktop.home)
    dawnly, bare = commands["dawnly"], commands["bare window"]
    try:
        print_starts(desktop, commands)
        print_memory_after_opening(desktop, dawnly, bare)
        print_hover(desktop, dawnly, bare)
        print_idle_cost(desktop, dawnly, bare)
    finally:
        desktop.close()


if __name__ == "__main__":
    main(sys.argv[1])
