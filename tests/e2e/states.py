"""Pictures of the program's main states: `states.py FOLDER` draws them all into the folder. The day, the time and what
there is to show are always the same, and so are the pictures, but for how a machine draws its letters."""

import json
import os
import subprocess
import sys
import time
from contextlib import closing

from desktop import (AWAY, BRIEF_LEFT, BRIEF_RIGHT, COLUMNS_TOP, HEADER_Y, NOTCH, PANEL_LEFT, PANEL_RIGHT, REFERENCE_DATE,
                     TODO_LEFT, Desktop)
from PIL import Image

HERE = os.path.dirname(os.path.abspath(__file__))
NOW = "2026-11-23 09:12:05"  # in the time zone of the sun
START = 1795425125 - REFERENCE_DATE  # the same moment as a file has it
CARD_X, TODO_X = BRIEF_LEFT + 160, TODO_LEFT + 90

WALLPAPER = "#33405c"
REST = (PANEL_RIGHT - 180, HEADER_Y)  # in the panel, and on nothing that lights up
PANEL = (PANEL_LEFT + 18, 0, PANEL_RIGHT - 18)

RECAP = """# Morning Briefing, Monday 23 November

### 🌙 Evening recap
Three of four meetings took place, and nothing is on fire.
- **Design review** went through, the mocks are in the [shared folder](https://example.org/mocks)
- **Legal** answered: the contract is *fine* from `clause 4` on

### 📅 Tomorrow
- 09:30 **Standup**
"""

def flagged(key, text):
    """The flags when one card has priority since an hour ago."""
    return {"prio": {key: text}, "cleared": {}, "hidden": [], "dates": {key: START - 3600},
            "firstFlagged": {key: START - 3600}}


def todo(number, text, **fields):
    return {"id": "00000000-0000-4000-8000-%012d" % number, "text": text, "done": False,
            "createdAt": START - 86400 + number, **fields}


TODOS = [
    todo(1, "Send the deck", prio=True, source="brief"),
    todo(2, "Sign the NDA", prio=True, source="item", sourceItemKey="sign-the-nda"),
    todo(3, "Call the bank tomorrow 15:00", remindAt=START + 100000, source="you"),
    todo(4, "Book the train to Utrecht", source="calendar", eventID="none"),
    todo(5, "Review the rollout plan"),
    todo(6, "Water the plants", done=True),
    todo(7, "Pay the invoice", done=True),
]


class Stage(Desktop):
    """A desktop on which it is always the same morning."""

    def __init__(self, settings=None, **options):
        super().__init__(calendar_access="fullAccess", compositor=True, window_manager=True, settings=settings, **options)
        self.environment["TZ"] = "UTC"
        self.run("hsetroot", "-solid", WALLPAPER)

    def write(self, name, value):
        with open(os.path.join(self.briefings, name), "w") as file:
            json.dump(value, file)

    def write_day(self, briefing=None, todos=()):
        if briefing:
            self.write_briefing("2026-11-22.md", "# Yesterday\n### Notes\n- Nothing new\n")
            self.write_briefing("2026-11-23.md", briefing)
        self.write("todos.json", {"todos": list(todos), "lastImportDay": "2026-11-23", "dismissed": []})

    def write_sample_day(self):
        with open(os.path.join(HERE, "../../packaging/sample-briefing.md")) as file:
            sample = file.read().replace("# Morning Briefing", "# Morning Briefing, Monday 23 November")
        self.write_day(sample.split("### ✅")[0], TODOS)
        self.write("itemflags.json", flagged("reply-to-legal-contract-is-due-friday-they-asked-twice", "Reply to Legal"))

    def write_meeting(self):
        self.write_calendar("Work", ("Design review", 1795425900, 1795428600, "ORGANIZER:mailto:anna@example.org",
                                     "ATTENDEE:mailto:you@example.org", "LOCATION:https://meet.google.com/abc-defg-hij"))

    def play(self):
        self.start(sys.executable, os.path.join(HERE, "../support/mpris_player.py"), "player", "Weightless",
                   "Marconi Union", "")

    def open_panel(self):
        self.start_program(NOW)
        self.move(*NOTCH)
        self.wait_for(lambda: self.report()["expanded"], "the panel to unfold")
        # Not beside it while it still grows.
        self.wait_for(lambda: self.screenshot().lowest_panel_row() > 200, "the panel to be drawn")
        self.settle()
        self.move(*REST)
        self.settle()

    def settle(self):
        """Waits until nothing moves any more; a cursor may go on blinking."""
        still, before = 0, b""
        for _ in range(20):
            time.sleep(0.2)
            with open(self.framebuffer, "rb") as file:
                now = file.read()
            still = still + 1 if now == before else 0
            before = now
            if still == 4:
                return

    def picture(self, box=None):
        """What is to be seen in left, top, right, bottom; without a bottom as far as the panel reaches."""
        self.settle()
        shot = self.screenshot()
        rows = Image.frombuffer("RGB", (shot.width, shot.height), shot.pixels, "raw", "BGRX", shot.stride, 1)
        left, top, right, *bottom = box or PANEL
        return rows.crop((left, top, right, bottom[0] if bottom else shot.lowest_panel_row() + 13)).copy()

    def press(self, x, y):
        self.move(x, y)
        self.run("xdotool", "mousedown", "1")

    def release(self):
        self.run("xdotool", "mouseup", "1")


def card_y(card):
    return COLUMNS_TOP + 56 + 41 * card


def todo_y(row):
    """The middle of a todo's first line."""
    noted = sum(entry.get("source") in ("brief", "item", "calendar") for entry in TODOS[:row])
    return COLUMNS_TOP + 90 + 28 * row + 8 * noted


def stacked(pictures, gap=10):
    whole = Image.new("RGB", (pictures[0].width, sum(p.height + gap for p in pictures) - gap), WALLPAPER)
    y = 0
    for picture in pictures:
        whole.paste(picture, (0, y))
        y += picture.height + gap
    return whole


def panel():
    with closing(Stage()) as stage:
        stage.write_sample_day()
        stage.write_meeting()
        stage.play()
        stage.open_panel()
        yield "panel", stage.picture()


def empty_day():
    with closing(Stage()) as stage:
        stage.open_panel()
        yield "empty", stage.picture()


def recap():
    with closing(Stage()) as stage:
        stage.write_day(RECAP, TODOS[4:6])
        stage.write("itemflags.json", flagged("renew-the-passport", "Renew the passport"))
        stage.open_panel()
        yield "recap", stage.picture()


def swipes(stage):
    """A card under the pointer, and one on each of the three ways that a swipe can take it."""
    column = (BRIEF_LEFT - 8, card_y(0) - 24, BRIEF_RIGHT + 8, card_y(2) + 24)
    shots = []
    stage.move(CARD_X, card_y(1))
    shots.append(stage.picture(column))
    for card, distance in ((0, 66), (0, -90), (1, -90)):
        if card == 1:
            stage.drag((CARD_X, card_y(1)), (CARD_X - 90, card_y(1)))  # clears it
            stage.settle()
        stage.drag((CARD_X, card_y(card)), (CARD_X + distance, card_y(card)), release=False)
        shots.append(stage.picture(column))
        stage.drag((CARD_X + distance, card_y(card)), (CARD_X, card_y(card)))
        stage.settle()
    return stacked(shots)


def cards_and_menus():
    with closing(Stage()) as stage:
        stage.write_sample_day()
        stage.open_panel()
        yield "swipes", swipes(stage)

        stage.press(CARD_X, card_y(0))
        time.sleep(0.7)
        for step in (30, 64):
            stage.move(CARD_X, card_y(0) + step)
        yield "reminder-menu", stage.picture()
        stage.move(CARD_X, card_y(0) + 63 + 3 * 28)
        stage.release()
        time.sleep(0.6)
        stage.move(*REST)
        yield "reminder-sheet", stage.picture()
        stage.key("Escape")
        stage.settle()

        stage.click(TODO_X, todo_y(2), button=3)
        time.sleep(0.3)
        stage.key("Down", "Down")
        yield "todo-actions", stage.picture()


def window_picture(stage, title, panels):
    def windows():
        return set(stage.search(title)) - panels

    stage.wait_for(lambda: stage.focused_window() in windows(), "the window " + title)
    stage.move(*AWAY)
    stage.settle()
    place = subprocess.run(["xwininfo", "-id", stage.focused_window()], env=stage.environment, check=True,
                           stdout=subprocess.PIPE, text=True).stdout
    fields = dict(line.strip().split(":", 1) for line in place.splitlines() if ": " in line)
    x, y, width, height = (int(fields[name]) for name in (
        "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
    return stage.picture((x, y, x + width, y + height))


def windows():
    with closing(Stage(settings={"didCompleteOnboarding": False})) as stage:
        stage.write_sample_day()
        stage.start_program(NOW)
        yield "tour", window_picture(stage, "Welcome to Dawnly", set())
    with closing(Stage()) as stage:
        stage.write_sample_day()
        stage.open_panel()
        panels = set(stage.search("Dawnly"))
        stage.click(PANEL_RIGHT - 30 - 20 - 13, HEADER_Y)
        yield "settings", window_picture(stage, "Dawnly", panels)


def states():
    """Every state's name and picture."""
    for scene in (panel, empty_day, recap, cards_and_menus, windows):
        yield from scene()


if __name__ == "__main__":
    os.makedirs(sys.argv[1], exist_ok=True)
    for state, image in states():
        image.save(os.path.join(sys.argv[1], state + ".png"), optimize=True)
