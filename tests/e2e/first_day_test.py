"""A user's first day, from the first start in an empty home to the second morning: with a pointer and a keyboard, an
agent that does what the prompts ask of it, and a look at every file and at the screen after each step."""

import os
import subprocess
import unittest

from desktop import AWAY, BRIEF_RIGHT, COLUMNS_TOP, HEADER_Y, NOTCH, PANEL_RIGHT, REFERENCE_DATE, WIDTH, Desktop
from screen_reader import ScreenReader

MONDAY, TUESDAY = "2026-11-23 09:12:05", "2026-11-24 07:45:00"
TOMORROW_AT_NINE = 1795510800 - REFERENCE_DATE
DEFAULT_FOLDER = "Library/Mobile Documents/iCloud~app~dawnly~Dawnly/Documents"
WELCOME_TODOS = ["Hover the notch and poke around", "Swipe a bullet right, then swipe one left",
                 "Check one of these todos off", "Connect your AI (the setup window has everything)"]
# What the example in the morning prompt has.
STAND_UP = "09:30 Stand-up with the platform team"
REVIEW = "14:00 Design review in room 4: bring the new mock-ups"
FIRST_TASKS = ["Sign the contract renewal", "Send Mira the rollout plan"]
REST = (PANEL_RIGHT - 180, HEADER_Y)  # in the panel, and on nothing
CAPTURED = "Call the bank"
SECOND_DAY = """# Morning Briefing, Tuesday 24 November

### 📅 Today's Schedule
- 08:30 **Hand-over** with the night shift

### ✅ Action Items
- [ ] Send Mira the rollout plan
- [ ] Book the train
"""


class FirstDay(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop(window_manager=True, first_start=True)
        self.addCleanup(self.desktop.close)
        self.desktop.environment["TZ"] = "UTC"
        self.desktop.briefings = os.path.join(self.desktop.home, DEFAULT_FOLDER)
        self.reader = ScreenReader(self.desktop)

    # What is in the files.

    def await_file(self, name, key, expected, of=lambda value: value):
        def value():
            found = self.desktop.read(name).get(key)
            return None if found is None else of(found)

        self.desktop.await_value(value, expected, name, 5)

    def await_todos(self, *texts):
        """The open todos in their order."""
        self.await_file("todos.json", "todos", list(texts),
                        lambda todos: [todo["text"] for todo in todos if not todo["done"]])

    def await_setting(self, key, expected):
        self.desktop.await_value(lambda: self.desktop.defaults().get(key), expected, key, 10)

    def prompt(self, kind):
        return self.desktop.run(os.environ["DAWNLYCTL"], "prompt", kind).decode().rstrip("\n")

    # What is on the screen.

    def contrast(self, left, top, width, height):
        """How much lighter (of 255) something in there is than most of it."""
        shot = self.desktop.screenshot()
        light = sorted(sum(shot.at(x, y)) // 3 for y in range(top, top + height) for x in range(left, left + width))
        return light[-1] - light[len(light) // 2]

    def see(self, role, name):
        """Waits until it is told and painted, which is where letters stand out, and rests; tells where."""
        def rests():
            try:
                node = self.reader.find(role, name)
                places = [self.reader.place(node) for _ in range(3)]
            except AssertionError:  # not there yet, or made anew
                return False
            place[:] = places[-1]
            return places == 3 * places[-1:] and self.contrast(*place) > 60

        place = []
        try:
            self.desktop.wait_for(rests, "%s %s" % (role, name), 5)
        except AssertionError as failure:
            raise AssertionError("%s in\n%s" % (failure, self.reader.text())) from failure
        return place

    def listed(self, role):
        return [node.name for node in self.reader.nodes() if node.role == role]

    def click(self, role, name, button=1):
        left, top, width, height = self.see(role, name)
        self.desktop.click(left + width // 2, top + height // 2, button)

    def await_window(self, title):
        self.desktop.wait_for(lambda: self.desktop.focused_window() in self.desktop.search(title), "the window " + title)

    def open_panel(self):
        # After a window of the program opened the panel keeps folded for a moment.
        self.desktop.wait_for(lambda: not self.desktop.report()["suppressed"], "the panel to be ready to unfold")
        self.desktop.move(*NOTCH)
        self.desktop.wait_for(lambda: self.desktop.report()["expanded"], "the panel to unfold")

    def fold_panel(self):
        self.desktop.move(*AWAY)
        self.desktop.wait_for(lambda: not self.desktop.report()["expanded"], "the panel to fold")

    def open_settings(self):
        self.open_panel()
        self.click("push button", "Settings")
        self.desktop.wait_for(lambda: not self.desktop.report()["expanded"], "the panel to fold")
        self.see("page tab", "General")

    # The day.

    def question(self):
        """The window that asks for the calendars."""
        return self.desktop.search("Calendar access.*")[0]

    def first_start(self):
        d = self.desktop
        d.start_program(MONDAY)
        with open(os.path.join(d.briefings, "2026-11-23.md")) as file:
            self.assertEqual(file.readline(), "# 👋 Welcome to Dawnly\n")
        self.await_todos(*WELCOME_TODOS)
        self.await_file("feedback.json", "untouched", 9, len)
        self.assertTrue(d.defaults()["didWriteWelcomeBrief"])

        # No black where the tour's shadow cannot be seen through.
        d.wait_for(lambda: d.screenshot().is_wallpaper(WIDTH // 2 - 290, 400), "the tour to be cut to its shape", 3)
        self.see("push button", "Allow Full Access")
        d.run("xdotool", "windowmove", "--sync", self.question(), "0", "560")  # for later
        self.open_panel()
        self.see("heading", "👋 Welcome to Dawnly")
        self.see("push button", "📅 Getting Started, 3 cards")
        for text in WELCOME_TODOS:
            self.see("check box", text)
        left, top, _, height = self.see("check box", WELCOME_TODOS[2])
        d.click(left + 14, top + height // 2)
        self.await_todos(*WELCOME_TODOS[:2], WELCOME_TODOS[3])
        self.fold_panel()

    def expect_step(self, step):
        """The dots at the tour's lower edge, of which the step's is long."""
        left, top, _, height = self.see("label", "Step %d of 3" % step)
        shot = self.desktop.screenshot()
        long = [max(shot.at(left + x, top + height // 2)) > 200 for x in (9, 21, 33)]
        self.assertEqual(long, [number == step for number in (1, 2, 3)])

    def copy(self, button, kind):
        self.click("push button", button)
        expected = self.prompt(kind)
        self.assertIn("\n\n%s/\n\n" % self.desktop.briefings, expected)

        self.desktop.wait_for(lambda: self.desktop.ask("xclip", "-o", "-selection", "clipboard") == expected,
                              "the prompt on the clipboard")
        self.assertEqual(self.reader.find("push button", button).description, "Copied")

    def tour(self):
        d = self.desktop
        self.expect_step(1)
        self.click("push button", "Connect your AI")
        self.expect_step(2)
        self.click("radio button", "Set one up for me")
        self.copy("Copy Morning Task", "morning")
        self.click("radio button", "Evening recap")
        self.copy("Copy Evening Task", "evening")
        self.click("radio button", "I already have a brief")
        self.copy("Copy Delivery Block", "delivery")
        self.click("push button", "Almost done")
        self.expect_step(3)
        self.assertNotEqual(d.focused_window(), self.question())
        self.click("push button", "Connect")
        d.wait_for(lambda: d.focused_window() == self.question(), "the question of the start to come to the front")
        d.key("Return")
        self.await_setting("calendarAccess", "fullAccess")
        self.see("label", "Calendar connected")
        self.assertFalse(d.defaults().get("didCompleteOnboarding"))
        self.click("push button", "Start using Dawnly")
        self.await_setting("didCompleteOnboarding", True)
        d.wait_for(lambda: not d.search("Welcome to Dawnly"), "the tour to close")

    def another_folder(self):
        d = self.desktop
        self.open_settings()
        self.click("page tab", "Briefings")
        self.click("push button", "Choose Folder…")
        self.await_window("Choose Folder")
        d.key("ctrl+a")
        d.run("xdotool", "type", "--delay", "2", d.home + "/Agent")
        self.click("push button", "Watch This Folder")
        d.briefings = d.home + "/Agent"
        self.await_setting("briefingsFolderPath", d.briefings)
        d.wait_for(lambda: d.report()["briefings"] == 1, "the new folder to be read")  # it has the calendar's
        self.see("label", "Briefings folder: " + d.briefings)
        d.key("ctrl+w")
        # The todos and flags of another folder show from the next start on.
        d.program.terminate()
        self.assertEqual(d.program.wait(10), 0)
        d.start_program(MONDAY)
        self.open_panel()
        self.see("heading", "Today — Monday 23 Nov")
        self.fold_panel()

    def example(self, kind):
        """What the prompt shows its reader as an example."""
        return self.prompt(kind).split("--- begin example ---\n")[1].split("--- end example ---")[0]

    def agent_writes(self, name, text):
        """As the prompts ask for it: whole, and with nothing that the checker has a word against."""
        path = os.path.join(self.desktop.briefings, name)
        with open(path + ".tmp", "w") as file:
            file.write(text)
        os.rename(path + ".tmp", path)
        check = subprocess.run([os.environ["DAWNLYCTL"], "check", path], stdout=subprocess.PIPE, text=True, check=False)
        self.assertEqual((check.returncode, check.stdout), (0, ""))

    def has_light(self):
        """Whether the folded notch has the light that tells of a new briefing."""
        red, _, blue = self.desktop.screenshot().at(WIDTH // 2, 36)
        return red > 200 and blue < 100

    def the_agents_file(self):
        d = self.desktop
        self.assertFalse(self.has_light())
        self.agent_writes("2026-11-23.md", self.example("morning").replace("Monday 6 July", "Monday 23 November"))
        d.wait_for(self.has_light, "the notch to tell of it", 5)
        self.open_panel()
        self.see("heading", "Morning Briefing, Monday 23 November")
        d.wait_for(lambda: not self.has_light(), "the light to go out", 2)
        for card in (STAND_UP, REVIEW):
            self.see("list item", card)
        self.assertEqual(self.listed("list item"), [STAND_UP, REVIEW])
        for text in FIRST_TASKS:
            self.see("check box", text)
        self.await_file("feedback.json", "untouched", 5, len)

    def colour(self, card):
        """The colour of a card beside its words."""
        left, top, width, height = self.see("list item", card)
        return self.desktop.screenshot().at(left + width - 12, top + height // 2)

    def warmth(self, card):
        red, _, blue = self.colour(card)
        return red - blue

    def swipe(self, card, distance):
        left, top, width, height = self.see("list item", card)
        start = (left + width // 2, top + height // 2)
        self.desktop.drag(start, (start[0] + distance, start[1] + 2))

    def swipes(self):
        d = self.desktop
        place = self.see("list item", REVIEW)
        plain = self.warmth(STAND_UP), self.contrast(*place)
        self.swipe(STAND_UP, 90)
        self.await_file("feedback.json", "prio", [{"text": STAND_UP, "since": "2026-11-23"}])
        self.swipe(REVIEW, -90)
        self.await_file("feedback.json", "cleared", [REVIEW])
        self.await_file("feedback.json", "untouched", 3, len)
        self.await_file("itemflags.json", "prio", [STAND_UP], lambda flags: list(flags.values()))
        self.await_file("itemflags.json", "cleared", [REVIEW], lambda flags: list(flags.values()))
        d.wait_for(lambda: self.warmth(STAND_UP) > plain[0] + 20, "the priority's colour", 3)
        d.move(*REST)
        d.wait_for(lambda: self.contrast(*place) < 0.8 * plain[1], "the words of the cleared card to pale", 3)
        self.fold_panel()

    def quick_capture(self):
        d = self.desktop
        d.key("ctrl+space")
        d.wait_for(lambda: d.report()["expanded"], "the hotkey to open the panel")
        d.wait_for(lambda: any(node.name == "Add a todo…" and "FOCUSED" in node.states for node in self.reader.nodes()),
                   "the field to take the keyboard")
        d.run("xdotool", "type", "--delay", "5", CAPTURED)
        self.see("text", "Add a todo…")
        d.key("Return")
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold")
        self.await_file("todos.json", "todos", "you",
                        lambda todos: {todo["text"]: todo.get("source") for todo in todos or ()}.get(CAPTURED))

    def reminder(self):
        d = self.desktop
        self.open_panel()
        self.click("check box", CAPTURED, button=3)
        self.click("menu item", "Remind me…")
        self.assertFalse(self.has_bell())
        self.click("menu item", "Tomorrow at 9:00")
        self.await_file("todos.json", "todos", TOMORROW_AT_NINE,
                        lambda todos: {todo["text"]: todo.get("remindAt") for todo in todos or ()}.get(CAPTURED))
        self.await_file("feedback.json", "reminders", [CAPTURED + " — reminder set for 2026-11-24 09:00"])
        with open(d.home + "/state/dawnly/notifications.json") as file:
            self.assertIn(CAPTURED, file.read())
        d.wait_for(self.has_bell, "the bell", 3)

    def has_bell(self):
        """Whether the captured todo's row has something orange at its end."""
        left, top, width, height = self.see("check box", CAPTURED)
        shot = self.desktop.screenshot()
        colours = [shot.at(x, y) for y in range(top, top + height) for x in range(left + width - 30, left + width)]
        return sum(red > 200 and blue < 90 for red, _, blue in colours) > 20

    def between_the_columns(self):
        return sum(self.desktop.screenshot().at(BRIEF_RIGHT + 7, COLUMNS_TOP + 120))

    def settings(self):
        d = self.desktop
        self.open_panel()
        self.see("heading", "Morning Briefing")
        self.assertGreater(self.between_the_columns(), 200)  # the wallpaper shines through
        self.open_settings()
        self.click("page tab", "Appearance")
        self.click("radio button", "Dark")
        self.await_setting("notchTheme", "dark")
        self.click("page tab", "AI Setup")
        self.copy("Copy Task Prompt", "morning")  # with the folder of now
        self.click("page tab", "General")
        left, top, width, _ = self.see("check box", "Quick capture hotkey")
        d.click(left + width - 20, top + 12)  # the switch
        self.await_setting("quickCaptureEnabled", False)
        d.key("ctrl+w")
        self.open_panel()
        self.see("heading", "Morning Briefing")
        d.wait_for(lambda: self.between_the_columns() < 40, "the dark theme", 3)

    def the_evening(self):
        with open(os.path.join(self.desktop.briefings, "2026-11-23.md")) as file:
            morning = file.read()
        todos = self.desktop.read("todos.json")
        self.agent_writes("2026-11-23.md", morning + "\n" + self.example("evening"))
        self.see("heading", "EOD Recap")
        self.see("list item", "Legal countersigned the contract renewal at 15:40")
        self.see("list item", STAND_UP)
        self.assertEqual(self.desktop.read("todos.json"), todos)

    def the_second_morning(self):
        d = self.desktop
        self.open_settings()
        self.click("push button", "Quit Dawnly")
        self.assertEqual(d.program.wait(10), 0)
        todos, flags = self.desktop.read("todos.json")["todos"], self.desktop.read("itemflags.json")

        d.move(*AWAY)
        d.start_program(TUESDAY)
        self.open_panel()
        self.see("heading", "Today — Tuesday 24 Nov")  # what the calendar has, until the agent has written
        self.see("check box", CAPTURED)
        self.assertFalse(d.search("Welcome to Dawnly") or d.search("Calendar access"))
        self.assertEqual([name for name in os.listdir(d.briefings) if name.endswith(".md")], ["2026-11-23.md"])
        self.see("push button", "⚡ Priorities the brief missed, 1 card")
        self.assertEqual((self.desktop.read("todos.json")["todos"], self.desktop.read("itemflags.json")), (todos, flags))

        self.agent_writes("2026-11-24.md", SECOND_DAY)
        self.see("heading", "Morning Briefing, Tuesday 24 November")
        self.see("list item", "08:30 Hand-over")
        # The task with the wording of yesterday is the one of yesterday.
        self.await_todos(*[todo["text"] for todo in todos if not todo["done"]], "Book the train")
        self.see("check box", "Book the train")
        self.await_file("feedback.json", "untouched", ["08:30 Hand-over with the night shift"])
        self.click("push button", "Older briefing")
        self.see("heading", "EOD Recap")
        self.see("label", "Monday 23 Nov")
        self.assertGreater(self.warmth(STAND_UP), 20)
        self.click("push button", "Newer briefing")
        self.see("heading", "Morning Briefing, Tuesday 24 November")

    def test_it_is_lived_through(self):
        for step in (self.first_start, self.tour, self.another_folder, self.the_agents_file, self.swipes,
                     self.quick_capture, self.reminder, self.settings, self.the_evening,
                     self.the_second_morning):
            step()


if __name__ == "__main__":
    unittest.main(verbosity=2)
