"""Starts copies of the program one over another and kills them at random moments, on a machine with other things to do,
while todos and flags keep coming in. What was acknowledged must be in the files, once, whatever died meanwhile.

    starts_test.py [--rounds N] [--seed N]

A round starts a copy, mostly over one that runs, does something to one of the two at some moment, and then looks. A
failure prints its seed; what the scheduler does is random all the same, so a repetition may need several tries."""

import argparse
import collections
import contextlib
import json
import os
import random
import signal
import statistics
import subprocess
import sys
import threading
import time
import uuid

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

from desktop import Desktop  # noqa: E402

PROGRAM, COMPANION = os.environ["DAWNLY"], os.environ["DAWNLYCTL"]
NAME = "app.dawnly.Dawnly"
WRITERS = 3
START_LIMIT = 30  # s, on a busy machine; a lock that is left behind would last for ever
KEPT_TODOS = 60  # the list is cut to that length now and then, or the files would grow all the time
CUT_EVERY = 20  # rounds
FILES = ("todos.json", "itemflags.json", "feedback.json")


class Bus:
    """Who owns the program's name, asked over one connection."""

    def __init__(self, address):
        self.connection = Gio.DBusConnection.new_for_address_sync(
            address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION,
            None, None)

    def owner(self):
        """The process that owns the name; None when nobody does."""
        try:
            answer = self.connection.call_sync(
                "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                GLib.Variant("(s)", (NAME,)), None, Gio.DBusCallFlags.NONE, 5000, None)
        except GLib.Error:
            return None
        return answer.unpack()[0]


class Load:
    """Other work on the machine: one process that computes and one that writes and forces it to the disk."""

    def __init__(self, folder):
        disk = "import os\nwhile True:\n f = open(%r, 'wb'); f.write(os.urandom(1 << 22)); f.flush(); os.fsync(f.fileno())"
        self.processes = [subprocess.Popen([sys.executable, "-c", code])
                          for code in ("while True: pass", disk % os.path.join(folder, "load"))]

    def close(self):
        for process in self.processes:
            process.kill()
            process.wait()


class Writers:
    """Programs that add todos and flags all the time, and what became of each. One of them dies now and then, too."""

    def __init__(self, desktop, seed):
        self.desktop = desktop
        self.lock = threading.Lock()
        self.acknowledged = {"todo": set(), "flag": set()}
        self.count = collections.Counter()
        self.failures = []
        self.running = threading.Event()
        self.stopped = False
        self.idle = threading.Semaphore(0)
        self.threads = [threading.Thread(target=self._write, args=(index, random.Random("%d/%d" % (seed, index))))
                        for index in range(WRITERS)]
        for thread in self.threads:
            thread.start()

    def _write(self, index, chance):
        number = 0
        while True:
            if not self.running.is_set():
                self.idle.release()
                self.running.wait()
            if self.stopped:
                return
            number += 1
            kind = "flag" if chance.random() < 0.3 else "todo"
            name = "%s %d.%d" % (kind, index, number)
            command = ["flags", "prio", name, name] if kind == "flag" else ["todo", "add", name]
            self._run(kind, name, command, chance)
            time.sleep(chance.random() * 0.05)

    def _run(self, kind, name, command, chance):
        process = subprocess.Popen([COMPANION, *command], env=self.desktop.environment, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.PIPE, text=True)
        killed = chance.random() < 0.03
        if killed:
            time.sleep(chance.random() * 0.04)
            process.kill()
        errors = process.communicate()[1]
        with self.lock:
            if process.returncode == 0 or (process.returncode == 2 and "is kept" in errors):
                self.acknowledged[kind].add(name)
                self.count[kind + "s acknowledged"] += 1
                self.count["kept for later"] += process.returncode == 2
                self.count["made without a program that did not answer"] += "does not answer" in errors
            elif killed:
                self.count["commands killed"] += 1
            else:
                self.failures.append("%s: %d %s" % (command, process.returncode, errors))

    @contextlib.contextmanager
    def paused(self):
        self.running.clear()
        for _ in self.threads:
            self.idle.acquire()
        yield
        self.running.set()

    def close(self):
        self.stopped = True
        self.running.set()
        for thread in self.threads:
            thread.join()


class Reader:
    """An agent that reads the files all the time. They are written in place, so it may see one half-written, but has to
    see it whole a moment later."""

    def __init__(self, folder):
        self.folder = folder
        self.readings = 0
        self.torn = collections.Counter()
        self.stopped = False
        self.thread = threading.Thread(target=self._read)
        self.thread.start()

    def _read(self):
        while not self.stopped:
            for name in FILES:
                self.readings += 1
                if not is_whole(os.path.join(self.folder, name)):
                    self.torn[name] += 1
            time.sleep(0.01)

    def close(self):
        self.stopped = True
        self.thread.join()


def is_whole(path):
    try:
        with open(path) as file:
            json.load(file)
    except FileNotFoundError:
        pass
    except ValueError:
        return False
    return True


class Starts:
    """The rounds, and what is known of the copies so far."""

    def __init__(self, rounds, seed):
        self.rounds, self.seed = rounds, seed
        self.chance = random.Random(seed)
        self.count = collections.Counter()
        self.times = []
        self.copies = []
        self.current = None
        self.desktop = Desktop()
        self.bus = Bus(self.desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.load = Load(self.desktop.home)
        self.writers = Writers(self.desktop, seed)
        self.reader = Reader(self.desktop.briefings)
        self.items = 0

    def close(self):
        self.reader.close()
        self.writers.close()
        self.load.close()
        for copy in self.copies:
            if copy.poll() is None:
                copy.kill()
                copy.wait()
        self.desktop.close()

    def run(self):
        self.writers.running.set()
        for number in range(1, self.rounds + 1):
            self.round()
            self.check(number)
            if number % 50 == 0:
                print("%d rounds" % number, flush=True)

    # One round.

    def start(self):
        self.count["starts"] += 1
        copy = subprocess.Popen([PROGRAM], env=self.desktop.environment, stderr=subprocess.DEVNULL)
        copy.started = time.monotonic()
        copy.endings = {None, 0}
        self.copies = [other for other in self.copies if other.poll() is None] + [copy]
        return copy

    def round(self):
        older, self.current = self.current, self.start()
        if older and older.poll() is None:
            self.count["replacements begun"] += 1
        if self.chance.random() < 0.3:
            self.agent_writes()
        what = self.chance.choice(("nothing", "nothing", "SIGKILL", "SIGKILL", "SIGTERM", "third", "older"))
        # Anywhere from before the program looks for another copy to well after it has its name on the bus.
        time.sleep(self.chance.random() * 0.8)
        if what == "third":
            self.current = self.start()
        elif what == "older" and older:
            self.kill(older, "SIGKILL")
        elif what.startswith("SIG"):
            self.kill(self.current, what)
            if self.chance.random() < 0.5:
                time.sleep(self.chance.random() * 0.2)  # writers meet no program
            self.current = self.start()

    def kill(self, copy, name):
        if copy.poll() is not None:
            return
        # One that has hardly begun has nothing to put in order yet.
        copy.endings.add(-getattr(signal, name))
        copy.send_signal(getattr(signal, name))
        self.count[name] += 1
        if name == "SIGKILL":
            copy.wait()

    def agent_writes(self):
        self.items += 1
        items = "".join("- [ ] item %d\n" % item for item in range(max(1, self.items - 9), self.items + 1))
        self.desktop.write_briefing(time.strftime("%Y-%m-%d.md"), "# Day\n### ✅ Action Items\n" + items)

    # What must hold after it.

    def check(self, number):
        self.wait(lambda: self.bus.owner() == self.current.pid, "the newest copy to own the name")
        self.times.append(time.monotonic() - self.current.started)
        self.wait(lambda: sum(copy.poll() is None for copy in self.copies) == 1, "all others to be gone")
        if self.current.poll() is not None:
            self.fail("the newest copy has ended")
        for copy in self.copies:
            if copy.returncode == -signal.SIGKILL and copy.returncode not in copy.endings:
                # By its successor, which gives it five seconds. What it had not written by then is in its journal.
                self.count["killed by the next copy"] += 1
            elif copy.returncode not in copy.endings:
                self.fail("a copy ended with %d" % copy.returncode)
        self.copies = [self.current]
        with self.writers.paused():
            if self.writers.failures:
                self.fail(*self.writers.failures)
            self.check_files()
            if number % CUT_EVERY == 0:
                self.cut_list()
                self.check_leftovers()

    def check_files(self):
        known = self.writers.acknowledged
        todos = collections.Counter(todo["text"] for todo in self.read("todos.json").get("todos", ()))
        lost = known["todo"] - set(todos)
        if lost:
            self.fail("lost todos: %s" % sorted(lost))
        twice = [text for text, times in todos.items() if times > 1]
        if twice:
            self.fail("todos that came twice: %s" % twice)
        flags = self.read("itemflags.json").get("prio", {})
        if not known["flag"] <= set(flags):
            self.fail("lost flags: %s" % sorted(known["flag"] - set(flags)))
        if self.items:
            self.wait(lambda: "item %d" % self.items in self.todo_texts(), "the briefing's last item")
        told = lambda: {entry["text"] for entry in self.read("feedback.json").get("prio", ())}
        self.wait(lambda: known["flag"] <= told(), "the feedback to tell all flags")

    def todo_texts(self):
        return [todo["text"] for todo in self.read("todos.json").get("todos", ())]

    def cut_list(self):
        """Another program, which knows nothing of this one, shortens the list, and adds a todo of its own. Flags are
        taken back, so that they stay few."""
        flags = self.writers.acknowledged["flag"]
        for name in sorted(flags)[:-KEPT_TODOS]:
            self.desktop.run(COMPANION, "flags", "unprio", name)
            flags.remove(name)
        path = os.path.join(self.desktop.briefings, "todos.json")
        state = self.read("todos.json")
        state["todos"] = state["todos"][-KEPT_TODOS:]
        own = dict(id=str(uuid.uuid4()).upper(), text="foreign %s" % uuid.uuid4(), done=False, createdAt=0)
        state["todos"].append(own)
        with open(path, "r+") as file:
            file.write(json.dumps(state))
            file.truncate()
        self.count["foreign rewrites"] += 1
        self.writers.acknowledged["todo"] &= {todo["text"] for todo in state["todos"]}
        self.writers.acknowledged["todo"].add(own["text"])

    def check_leftovers(self):
        """Nothing piles up: no half-made files, no processes that nobody waits for."""
        for folder, most in ((self.desktop.briefings, 5), (self.desktop.home + "/state/dawnly", 120),
                             (self.desktop.home + "/config/dawnly", 2)):
            names = [name for _, _, files in os.walk(folder) for name in files]
            if len(names) > most:
                self.fail("%d files in %s: %s" % (len(names), folder, sorted(names)))
        mark = ("HOME=" + self.desktop.home).encode()
        for pid in filter(str.isdigit, os.listdir("/proc")):
            with contextlib.suppress(OSError):
                if os.readlink("/proc/%s/exe" % pid) not in (PROGRAM, COMPANION) or int(pid) == self.current.pid:
                    continue
                with open("/proc/%s/environ" % pid, "rb") as environment:
                    if mark in environment.read().split(b"\0"):
                        self.fail("process %s was left behind" % pid)

    def read(self, name):
        """The file's content, which may be under way; {} when there is none."""
        path = os.path.join(self.desktop.briefings, name)
        if not os.path.exists(path):
            return {}
        self.wait(lambda: is_whole(path), name + " to be whole", 3)
        with open(path) as file:
            return json.load(file)

    def wait(self, condition, what, seconds=START_LIMIT):
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                self.fail("waited %d s in vain for %s" % (seconds, what))
            time.sleep(0.005)

    def fail(self, *problems):
        raise AssertionError("seed %d, start %d: %s" % (self.seed, self.count["starts"], "\n".join(problems)))

    def report(self):
        counts = {**self.count, **self.writers.count}
        for name, value in counts.items():
            print("%6d  %s" % (value, name))
        if self.times:
            print("%6.2f  s until the newest copy had its name, at most %.2f" %
                  (statistics.median(self.times), max(self.times)))
        print("%6d  readings of the files by others, half-written: %s" % (self.reader.readings, dict(self.reader.torn)))


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("-v", action="store_true", help="ignored")
    arguments.add_argument("--rounds", type=int, default=30)
    arguments.add_argument("--seed", type=int, default=random.randrange(1 << 31))
    chosen = arguments.parse_args()
    print("seed", chosen.seed, flush=True)
    starts = Starts(chosen.rounds, chosen.seed)
    began = time.monotonic()
    try:
        starts.run()
        print("nothing was lost and nothing came twice in %.0f s" % (time.monotonic() - began))
    finally:
        starts.report()
        starts.close()


if __name__ == "__main__":
    main()
