"""Every theme over a colourful wallpaper: what it looks like, that its text can be read, and that the panel shows what
is behind it, as long as it is open."""

import contextlib
import itertools
import os
import subprocess
import time
import unittest

from desktop import AWAY, NOTCH, PANEL_LEFT, PANEL_RIGHT, WIDTH, Desktop

THEMES = ("glass", "haze", "sun", "dusk", "custom", "dark")
TRANSLUCENCIES = (0.2, 0.6, 1.0)
CUSTOM_COLOURS = {"customTopHex": 0x9FD8FF, "customBottomHex": 0xFFB3C8}  # light, the harder case
WALLPAPER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../packaging/colourful-wallpaper.sh")
BRIEFING = ("# The briefing of a colourful day\n### Schedule\n- Standup with the whole platform team at ten\n"
            "- Design review with the new mocks and everyone\n- Lunch with the colleagues from the other building\n"
            "### Urgent\n- One\n### Mentions\n- Two\n### Reading\n- Three\n### Further\n- Four\n")

# Where text stands, (left, top, right, bottom), and the least contrast that it must have there. 4.5 is what the Web
# Content Accessibility Guidelines ask of text (AA), 3 of large text and of parts that one must be able to see. What is
# measured lies below what the colours give, because no stroke of small text fills its pixels.
TEXTS = {
    "title": ((332, 46, 560, 66), 4.5),
    "date": ((332, 68, 388, 80), 3.0),
    "section": ((328, 118, 384, 136), 4.5),
    "first card": ((324, 152, 560, 170), 4.5),
    "second card": ((324, 192, 600, 212), 4.5),
    "third card": ((324, 234, 600, 252), 4.5),
    "folded section": ((314, 292, 354, 308), 4.5),
}
WINDOW = 28  # wider than any gap between two words
# Beside the cards, where nothing but the background is.
MARGIN_X = PANEL_LEFT + 30 + 10


LINEAR = [level / 255 / 12.92 if level <= 10 else ((level / 255 + 0.055) / 1.055) ** 2.4 for level in range(256)]


def luminance(pixel):
    red, green, blue = pixel
    return 0.2126 * LINEAR[red] + 0.7152 * LINEAR[green] + 0.0722 * LINEAR[blue]


def contrast(screen, box):
    """The least contrast between text and background in any part of the box."""
    left, top, right, bottom = box
    worst = 21.0
    for x in range(left, right - WINDOW + 1, WINDOW):
        values = sorted(luminance(screen.at(i, j)) for i in range(x, x + WINDOW) for j in range(top, bottom))
        # Most of the pixels are background; its lighter half counts.
        background, text = values[len(values) // 2], values[-1]
        worst = min(worst, (text + 0.05) / (background + 0.05))
    return worst


def margin(screen):
    return [screen.at(MARGIN_X, y) for y in range(130, 330, 5)]


def distance(a, b):
    return sum(abs(p - q) for one, other in zip(a, b) for p, q in zip(one, other)) / (3 * len(a))


def has_backdrop_thread(program):
    names = set()
    tasks = "/proc/%d/task/" % program.pid
    for task in os.listdir(tasks):
        with contextlib.suppress(FileNotFoundError, ProcessLookupError), open(tasks + task + "/comm") as name:
            names.add(name.read().strip())
    return "dawnly.backdrop" in names


class Themes(unittest.TestCase):
    def desktop(self, compositor=True, **settings):
        d = Desktop(compositor=compositor, settings=settings)
        self.addCleanup(d.close)
        d.write_briefing("2026-11-22.md", BRIEFING)
        picture = d.home + "/wallpaper.png"
        subprocess.run([WALLPAPER, picture], check=True)
        d.run("hsetroot", "-fill", picture)
        return d

    def open_panel(self, d):
        d.start_program()
        self.unfold(d)
        return d.screenshot()

    @staticmethod
    def unfold(d):
        d.unfold()
        d.move(WIDTH // 2, 60)  # off the cards, which light up under the pointer
        time.sleep(0.5)

    def fold(self, d):
        d.move(*AWAY)
        d.wait_for(lambda: d.report()["expanded"] is False, "the panel to fold")
        time.sleep(0.8)

    def check_texts(self, screen, name):
        for text, (box, least) in TEXTS.items():
            with self.subTest(theme=name, text=text):
                self.assertGreaterEqual(contrast(screen, box), least)

    def show_all(self, compositor, translucencies):
        d = self.desktop(compositor, **CUSTOM_COLOURS)
        margins = {}
        for translucency in translucencies:
            for theme in THEMES:
                d.set_defaults(notchTheme=theme, **{"translucency." + theme: translucency})
                screen = self.open_panel(d)
                self.check_texts(screen, "%s at %g" % (theme, translucency))
                margins[theme, translucency] = margin(screen)
                d.program.terminate()
                d.program.wait()
                d.move(*AWAY)
        for translucency in translucencies:
            for one, other in itertools.combinations(THEMES, 2):
                with self.subTest("one can be told from another", one=one, other=other, translucency=translucency):
                    self.assertGreater(distance(margins[one, translucency], margins[other, translucency]), 8)

    def test_each_theme_is_readable_and_like_no_other(self):
        self.show_all(True, TRANSLUCENCIES)

    def test_the_same_without_a_compositor(self):
        self.show_all(False, (1.0,))

    def test_the_panel_shows_what_is_behind_it_while_it_is_open(self):
        d = self.desktop(notchTheme="glass", **{"translucency.glass": 1.0})
        program = d.start_program()
        self.unfold(d)
        before = d.screenshot()
        red, green, blue = before.at(MARGIN_X, 230)  # over the pink disc
        self.assertGreater(red, green + 60)
        self.assertGreater(red, blue + 30)
        edge = [before.at(x, 465)[1] for x in range(330, PANEL_RIGHT - 40, 2)]
        self.assertLess(max(abs(a - b) for a, b in zip(edge, edge[1:])), 12, "no hard edge shows through")

        d.run("hsetroot", "-solid", "#10c040")
        d.wait_for(lambda: d.screenshot().at(MARGIN_X, 230)[1] > 150 > d.screenshot().at(MARGIN_X, 230)[0],
                   "the new wallpaper to show through", 3)

        self.assertTrue(has_backdrop_thread(program))
        self.fold(d)
        d.wait_for(lambda: not has_backdrop_thread(program), "the backdrop's thread to end", 3)
        self.assertEqual(d.screenshot().at(WIDTH // 2, 10), (0, 0, 0), "folded it is the black notch")

    def test_without_a_compositor_the_notch_leaves_no_shadow_in_the_backdrop(self):
        d = self.desktop(False, notchTheme="glass", **{"translucency.glass": 1.0})
        d.run("hsetroot", "-solid", "#c0c0c0")
        screen = self.open_panel(d)
        row = [screen.at(x, 144)[0] for x in (MARGIN_X, WIDTH // 2 + 77, PANEL_RIGHT - 40)]  # between the cards
        self.assertGreater(min(row), 120)
        self.assertLess(max(row) - min(row), 6)

    def test_a_compositor_that_blurs_is_asked_to(self):
        d = self.desktop(notchTheme="glass", **{"translucency.glass": 1.0})
        blur = "_KDE_NET_WM_BLUR_BEHIND_REGION"
        d.start_program()
        # Compositors say so when they are ready, and take it back when the user switches it off.
        d.run("xprop", "-root", "-format", blur, "32c", "-set", blur, "0")
        self.unfold(d)
        screen = d.screenshot()
        window, = d.search("Dawnly")

        def asked():
            return d.run("xprop", "-id", window, blur).decode().partition("= ")[2].split(", ")

        region = asked()
        self.assertEqual(len(region) % 4, 0)
        self.assertGreater(max(int(number) for number in region), 600, "as wide as the card")
        # This compositor only says so: what is behind shows through as it is, with its hard edges.
        self.assertEqual(screen.at(MARGIN_X, 230), (0xFF, 0x5A, 0x8A))
        self.check_texts(screen, "blurred by the compositor")
        d.run("xprop", "-root", "-remove", blur)
        d.wait_for(lambda: asked() == [""], "the compositor not to be asked any more", 3)


if __name__ == "__main__":
    unittest.main()
