"""A user's first day in pictures of one size: `first_day_pictures.py FOLDER` draws them into the folder."""

import os
import sys
from contextlib import closing

from desktop import HEADER_Y, HEIGHT, PANEL_RIGHT
from PIL import Image
from states import CARD_X, NOW, REST, TODO_X, Stage, card_y, todo_y

SIZE = (800, 500)
AROUND_PANEL = (240, 0, 1040, 500)
WIDE = 1920  # room for the tour beside the panel


class Evening(Stage):
    """With the theme that a new user has, over a sky."""

    def __init__(self, **options):
        super().__init__(settings={"notchTheme": "glass"}, **options)
        self.run("hsetroot", "-add", "#34446f", "-add", "#b0667e", "-add", "#e8b478", "-gradient", "0")

    def shot(self, box=AROUND_PANEL):
        return self.picture(box).resize(SIZE, Image.Resampling.LANCZOS)


class WideEvening(Evening):
    def _start_server(self):
        self.framebuffer = os.path.join(self.home, "Xvfb_screen0")
        self._run_server("Xvfb", "-fbdir", self.home, "-screen", "0", "%dx%dx24" % (WIDE, HEIGHT + 100))


def welcome(stage):
    stage.start_program(NOW)
    stage.wait_for(lambda: stage.focused_window() in stage.search("Calendar access.*"), "the question")
    stage.settle()
    stage.key("Return")
    stage.wait_for(lambda: not stage.search("Calendar access.*"), "the answer")
    tour = stage.search("Welcome to Dawnly")[0]
    stage.run("xdotool", "windowmove", "--sync", tour, str(WIDE // 2 + 360), "60", "windowfocus", "--sync", tour)
    stage.move(WIDE // 2, 10)
    stage.wait_for(lambda: stage.report()["expanded"], "the panel to unfold")
    stage.settle()
    stage.move(WIDE // 2 + 180, HEADER_Y)
    yield "1-welcome", stage.shot((WIDE - 1360, 0, WIDE, 850))


def day(stage):
    stage.write_sample_day()
    stage.write_meeting()
    stage.open_panel()
    yield "2-briefing", stage.shot()

    stage.drag((CARD_X, card_y(2)), (CARD_X + 66, card_y(2)), release=False)
    yield "3-swipe", stage.shot()
    stage.drag((CARD_X + 66, card_y(2)), (CARD_X, card_y(2)))
    stage.settle()

    stage.move(TODO_X, HEADER_Y)
    stage.click(TODO_X, card_y(0) - 4)
    stage.run("xdotool", "type", "Thank Anna for the mocks")
    stage.move(*REST)
    yield "4-capture", stage.shot()
    stage.key("Return")
    stage.settle()

    stage.click(TODO_X, todo_y(4), button=3)
    stage.settle()
    stage.key("Down", "Down", "Down", "Return")
    stage.settle()
    stage.move(*REST)
    stage.key("Down", "Down", "Down")
    yield "5-reminder", stage.shot()
    stage.key("Escape")
    stage.settle()

    stage.click(PANEL_RIGHT - 30 - 20 - 13, HEADER_Y)
    stage.wait_for(lambda: len(stage.search("Dawnly")) == 2, "the settings")
    stage.settle()
    yield "6-settings", stage.shot((96, 0, 1184, 680))


def pictures():
    for scene, stage in ((welcome, WideEvening(first_start=True)), (day, Evening())):
        with closing(stage):
            yield from scene(stage)


if __name__ == "__main__":
    os.makedirs(sys.argv[1], exist_ok=True)
    for name, image in pictures():
        image.save(os.path.join(sys.argv[1], name + ".png"), optimize=True)
