"""Calendars of a real Evolution Data Server, beside the files that the user keeps."""

import json
import os
import signal
import time
import unittest

from session import PROGRAMS, Session

SERVER = ["org.gnome.evolution.dataserver.Sources5", "org.gnome.evolution.dataserver.Calendar8"]
# The one that the distribution's bindings of the server's library are for.
PYTHON = "/usr/bin/python3"
CLIENT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "eds_client.py")


class CalendarsTest(unittest.TestCase):
    def open_session(self, services):
        session = Session(services)
        self.addCleanup(session.close)
        os.makedirs(f"{session.home}/.local/share/dawnly/calendars")
        return session

    def write_file(self, session, title):
        day = time.strftime("%Y%m%d", time.localtime(time.time() + 86400))
        path = f"{session.home}/.local/share/dawnly/calendars/{title}.ics"
        with open(path, "w", encoding="utf-8") as file:
            file.write(f"BEGIN:VEVENT\nUID:{title}\nSUMMARY:{title}\nDTSTART;VALUE=DATE:{day}\nEND:VEVENT\n")

    def client(self, session, *arguments):
        return session.run(PYTHON, CLIENT, *arguments)

    def find_server_processes(self, session):
        """The processes of this session's server: those that its bus started."""
        found = []
        for name in os.listdir("/proc"):
            try:
                with open(f"/proc/{name}/environ", "rb") as file:
                    environment = file.read().split(b"\0")
                with open(f"/proc/{name}/cmdline", "rb") as file:
                    is_server = b"/evolution-" in file.read()
            except (OSError, ValueError):
                continue
            if is_server and f"HOME={session.home}".encode() in environment:
                found.append(int(name))
        return found

    def test_events_of_other_programs_show_and_ours_are_found_there(self):
        session = self.open_session(SERVER)
        self.write_file(session, "Own")
        probe = session.start(f"{PROGRAMS}/calendar_probe")
        probe.wait_for("calendar Personal")
        probe.wait_for(r"event .* Own \[Own\] ics:Own.ics:Own")

        uid = self.client(session, "add", "Standup", "90", "FREQ=DAILY;COUNT=2").strip()
        first = probe.wait_for(r"event (.*) Standup \[Personal\] (eds:.*)")
        second = probe.wait_for(r"event (.*) Standup \[Personal\] (eds:.*)")
        self.assertIn(f":{uid}/", first.group(2))
        self.assertNotEqual(first.group(2), second.group(2))
        starts = [time.mktime(time.strptime(each.group(1), "%Y-%m-%dT%H:%M:%SZ")) for each in (first, second)]
        self.assertEqual(starts[1] - starts[0], 86400)

        agenda = json.loads(session.run(f"{PROGRAMS}/dawnlyctl", "agenda", "--json"))
        # Read all the same: nobody asked the user yet what the panel may do.
        self.assertEqual(agenda["access"], "notDetermined")
        self.assertEqual(agenda["next"]["title"], "Standup")

        probe.write("From the panel; with a semicolon")
        identifier = probe.wait_for("added (eds:.*)").group(1)
        probe.wait_for(rf"event .* From the panel; with a semicolon \[Personal\] {identifier}")
        listed = self.client(session, "list").splitlines()
        own = [line for line in listed if line.endswith("From the panel; with a semicolon")]
        self.assertEqual(len(own), 1, listed)
        self.assertTrue(identifier.endswith(":" + own[0].split()[0]))

        self.client(session, "remove", uid)
        probe.wait_for("calendar Personal")
        while (line := probe.wait_for("event.*|done").group()) != "done":
            self.assertNotIn("Standup", line)

    def test_a_server_that_died_is_found_again(self):
        session = self.open_session(SERVER)
        probe = session.start(f"{PROGRAMS}/calendar_probe")
        self.client(session, "add", "Before", "90")
        probe.wait_for(r"event .* Before \[Personal\] eds:.*")
        for process in self.find_server_processes(session):
            os.kill(process, signal.SIGKILL)
        self.client(session, "add", "After", "100")
        probe.wait_for(r"event .* After \[Personal\] eds:.*", timeout=40)

    def test_a_server_that_hangs_keeps_nobody_waiting(self):
        session = self.open_session(SERVER)
        self.client(session, "list")
        processes = self.find_server_processes(session)
        self.assertTrue(processes)
        for process in processes:
            os.kill(process, signal.SIGSTOP)
        try:
            self.write_file(session, "Own")
            probe = session.start(f"{PROGRAMS}/calendar_probe")
            probe.wait_for(r"event .* Own \[Own\] .*", timeout=10)
            begun = time.monotonic()
            probe.process.stdin.close()
            waited = int(probe.wait_for(r"waited (\d+)").group(1))
            probe.process.wait(10)
            self.assertLess(time.monotonic() - begun, 5, "it ends while the server hangs")
            self.assertLess(waited, 1000, "milliseconds without a turn of the main loop")
        finally:
            for process in processes:
                os.kill(process, signal.SIGCONT)

    def test_without_a_server_events_go_to_a_file_of_ours(self):
        for services, environment in ((["org.knopwob.dunst"], {}), ([], {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/no"})):
            session = self.open_session(services)
            session.environment.update(environment)
            probe = session.start(f"{PROGRAMS}/calendar_probe")
            probe.wait_for("done")
            probe.write("Only here")
            identifier = probe.wait_for("added (ics:Dawnly:.*)").group(1)
            folder = f"{session.home}/.local/share/dawnly/calendars/Dawnly"
            self.assertEqual(os.listdir(folder), [identifier.split(":")[-1] + ".ics"])


if __name__ == "__main__":
    unittest.main()
