"""A login session of its own for one test: a home folder, a session bus with the services that the test names, and
programs started in it."""

import os
import queue
import re
import shutil
import subprocess
import tempfile
import threading
import time

PROGRAMS = os.environ["PROGRAMS"]

BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir={folder}</listen>
  <servicedir>{folder}/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class Program:
    """A running program whose lines of output can be waited for."""

    def __init__(self, arguments, environment):
        self.process = subprocess.Popen(arguments, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, text=True, bufsize=1)
        self.lines = queue.Queue()
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.put(line.rstrip("\n"))

    def write(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def wait_for(self, pattern, timeout=20):
        """The next line that matches; those before it are passed over."""
        seen = []
        deadline = time.monotonic() + timeout
        while True:
            try:
                line = self.lines.get(timeout=max(0.0, deadline - time.monotonic()))
            except queue.Empty:
                raise AssertionError(f"no line like {pattern!r}, but {seen}") from None
            match = re.fullmatch(pattern, line)
            if match:
                return match
            seen.append(line)

    def stop(self):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(10)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.process.stdin.close()
        self.process.stdout.close()


class Session:
    def __init__(self, services=()):
        """`services` are names of installed D-Bus services that the bus may start."""
        self.home = tempfile.mkdtemp(prefix="sunpane-services-")
        self.programs = []
        os.mkdir(f"{self.home}/services")
        for name in services:
            shutil.copy(f"/usr/share/dbus-1/services/{name}.service", f"{self.home}/services")
        with open(f"{self.home}/bus.conf", "w", encoding="utf-8") as configuration:
            configuration.write(BUS_CONFIGURATION.format(folder=self.home))
        self.environment = {"PATH": os.environ["PATH"], "HOME": self.home, "XDG_RUNTIME_DIR": self.home,
                            "LC_ALL": "C.UTF-8", "TZ": "Europe/Amsterdam", "GSETTINGS_BACKEND": "memory",
                            "GIO_USE_VFS": "local"}
        bus = self.start("dbus-daemon", "--nofork", "--print-address", f"--config-file={self.home}/bus.conf")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.wait_for("unix:.*").group()

    def start_display(self):
        server = self.start("sh", "-c", "exec Xvfb -screen 0 800x600x24 -nolisten tcp -displayfd 1")
        self.environment["DISPLAY"] = ":" + server.wait_for(r"\d+").group()

    def start(self, *arguments):
        program = Program(arguments, self.environment)
        self.programs.append(program)
        return program

    def run(self, *arguments, check=True, timeout=30):
        return subprocess.run(arguments, env=self.environment, check=check, timeout=timeout, text=True,
                              capture_output=True).stdout

    def close(self):
        for program in reversed(self.programs):
            program.stop()
        shutil.rmtree(self.home, ignore_errors=True)
