"""The user's calendar in the panel: the question for access, the schedule of a day without a briefing, the next meeting
and the way into it."""

import pathlib
import time
import unittest

from desktop import BRIEF_RIGHT, COLUMNS_TOP, Desktop

LINK = "https://acme.zoom.us/j/123?pwd=x"
STRIP_Y = COLUMNS_TOP + 17
JOIN_X = BRIEF_RIGHT - 6 - 25
# What tells a meeting from a task: somebody was invited.
INVITED = ("ORGANIZER:mailto:a@example.org", "ATTENDEE:mailto:b@example.org")


class Calendar(unittest.TestCase):
    def start(self, access):
        self.desktop = Desktop(window_manager=True, calendar_access=access)
        self.addCleanup(self.desktop.close)
        self.desktop.catch_addresses()
        return self.desktop

    def write_day(self):
        now = int(time.time())
        self.desktop.write_calendar(
            "Work", ("Design review", now + 720, now + 3420, "DESCRIPTION:Call: " + LINK, *INVITED),
            ("Workshop", now + 60, now + 7200, "LOCATION:Room 4", *INVITED))

    def has_strip(self):
        """Whether the strip of the next meeting is drawn: it is greener than anything else there."""
        red, green, blue = self.desktop.screenshot().at(BRIEF_RIGHT - 3, STRIP_Y)
        return green - red > 8 and green - blue > 6

    def remembered_access(self):
        return self.desktop.defaults().get("calendarAccess")

    def prompt(self):
        """The window that asks, or nothing."""
        found = self.desktop.search("Calendar access.*")
        return found[0] if found else None

    def overlap(self):
        """How much of the tour's width the question lies over."""
        def edges(window):
            lines = self.desktop.run("xdotool", "getwindowgeometry", "--shell", window).decode().split()
            place = dict(line.split("=") for line in lines)
            return int(place["X"]), int(place["X"]) + int(place["WIDTH"])

        (left, right), (tour_left, tour_right) = edges(self.prompt()), edges(self.desktop.search("Welcome to Dawnly")[0])
        return max(0, min(right, tour_right) - max(left, tour_left))

    def test_a_day_without_a_briefing_shows_the_schedule_and_joins_the_meeting(self):
        d = self.start("fullAccess")
        self.write_day()
        d.start_program()
        d.wait_for(lambda: d.report()["briefings"] == 1, "the schedule of the day")
        self.desktop.unfold()
        self.assertTrue(self.has_strip())
        d.click(JOIN_X, STRIP_Y)
        d.wait_for(lambda: d.opened() == [LINK], "the meeting to be opened")

        # The calendar changes while the panel is open.
        d.write_calendar("Work")
        d.wait_for(lambda: not self.has_strip(), "the strip to go")

    def test_the_program_outlives_the_session_bus(self):
        d = self.start("fullAccess")
        d.start_program()

        def speaks_to_the_server():
            threads = pathlib.Path("/proc/%d/task" % d.program.pid)
            return any(each.read_text() == "gdbus\n" for each in threads.glob("*/comm"))

        d.wait_for(speaks_to_the_server, "the desktop's calendars to be asked")
        time.sleep(1)
        d.bus.terminate()
        d.bus.wait(5)
        time.sleep(1)
        self.assertIsNone(d.program.poll())

    def test_a_refusal_is_kept_too(self):
        d = self.start(None)
        self.write_day()
        d.start_program()
        d.wait_for(self.prompt, "the question")
        time.sleep(0.5)
        d.run("xdotool", "windowfocus", "--sync", self.prompt())
        d.key("Escape")
        d.wait_for(lambda: self.remembered_access() == "denied", "the refusal to be kept")
        self.desktop.unfold()
        self.assertFalse(self.has_strip())
        self.assertIsNone(self.prompt())
        self.assertEqual(d.report()["briefings"], 0)

    def test_the_question_has_the_keyboard_before_the_tour_and_ending_the_program_answers_nothing(self):
        self.desktop = d = Desktop(window_manager=True, calendar_access=None, settings={"didCompleteOnboarding": False})
        self.addCleanup(d.close)
        for end in (lambda program: program.terminate(), lambda program: d.key("ctrl+q")):
            program = d.start_program()
            d.wait_for(lambda: d.search("Welcome to Dawnly"), "the tour")
            d.wait_for(lambda: self.prompt() and d.focused_window() == self.prompt(), "the question to have the keyboard")
            time.sleep(0.5)
            self.assertEqual(d.focused_window(), self.prompt())
            self.assertLessEqual(self.overlap(), 120)  # as narrow as the screen is
            end(program)
            self.assertEqual(program.wait(5), 0)
            self.assertIsNone(self.remembered_access())


if __name__ == "__main__":
    unittest.main(verbosity=2)
