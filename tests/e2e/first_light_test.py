"""The road of a briefing, from an agent's file to cards on the screen, and the panel's manners on the way."""

import os
import subprocess
import time
import unittest

from desktop import AWAY, HEIGHT, NOTCH, PANEL_LEFT, PANEL_RIGHT, REPORT, WIDTH, Desktop

MORNING = "# Morning\n### 📅 Schedule\n- one\n- two **bold**\n- three\n### 🔴 Urgent\n- four\n- five\n"


class FirstLight:
    """The tests, run once with a compositor and once without."""

    compositor = False

    def setUp(self):
        self.desktop = Desktop(compositor=self.compositor)
        self.addCleanup(self.desktop.close)

    def settle(self):
        """Until the panel's springs are at rest."""
        time.sleep(0.9)

    def test_a_new_file_becomes_cards_under_the_notch(self):
        d = self.desktop
        d.start_program()
        self.assertEqual(d.report()["briefings"], 0)
        folded = d.screenshot()
        self.assertEqual(folded.at(*NOTCH), (0, 0, 0))
        self.assertLess(folded.lowest_panel_row(), 40)
        self.assertTrue(folded.is_wallpaper(PANEL_LEFT + 5, 300))

        d.write_briefing("2026-11-22.md", MORNING)
        took = d.wait_for(lambda: d.report()["briefings"] == 1, "the new briefing")
        self.assertGreater(took, 0.3)
        self.assertLess(took, 2)

        d.unfold()
        picture = d.screenshot()
        self.assertGreater(picture.lowest_panel_row(), 240)
        self.assertEqual(picture.card_count(), 3)

        # The file changes while the panel is open.
        d.write_briefing("2026-11-22.md", MORNING.replace("- three\n", "- three\n- and a half\n"))
        d.wait_for(lambda: d.screenshot().card_count() == 4, "the fourth card")

    def test_it_folds_a_bit_more_than_24_points_outside_its_window(self):
        d = self.desktop
        d.write_briefing("2026-11-22.md", MORNING)
        d.start_program()
        d.unfold()
        d.move(PANEL_RIGHT + 23, 300)
        self.settle()
        self.assertTrue(d.report()["expanded"])
        d.move(PANEL_RIGHT + 25, 300)
        d.wait_for(lambda: not d.report()["expanded"], "the panel to fold", 2)
        self.settle()
        self.assertLess(d.screenshot().lowest_panel_row(), 40)

    def test_a_click_beside_the_outline_reaches_the_window_below(self):
        d = self.desktop
        below = d.start("xev", "-geometry", "%dx%d+0+0" % (WIDTH, HEIGHT), "-event", "button", stdout=subprocess.PIPE)
        time.sleep(1)
        d.write_briefing("2026-11-22.md", MORNING)
        d.start_program()
        # Folded: only the notch itself is in the way.
        d.click(WIDTH // 2, 60)
        d.move(*AWAY)
        d.wait_for(lambda: not d.report()["expanded"], "the panel to stay folded")
        d.signal("expand")                   # opened so, it stays open for five seconds whatever is clicked
        self.settle()
        d.click(PANEL_LEFT + 10, 300)        # in the window, left of the card
        d.click(WIDTH // 2, 200)             # on the card
        d.click(WIDTH // 2, 620)             # in the window, below the card
        d.click(PANEL_LEFT + 29, 1)          # in the left flare
        time.sleep(0.5)
        below.terminate()
        output = below.stdout.read().decode()
        places = [line.split("root:(")[1].split(")")[0] for line in output.splitlines() if "root:(" in line]
        pressed = places[::2]  # each press is followed by its release
        self.assertEqual(pressed, ["640,60", "%d,300" % (PANEL_LEFT + 10), "640,620"])

    def test_a_flick_across_the_notch_opens_it(self):
        d = self.desktop
        d.start_program()
        d.flick((WIDTH // 2 - 300, 3), (WIDTH // 2 + 300, 3))
        d.wait_for(lambda: d.report()["expanded"], "the flick to be noticed", 1)

    def test_the_report_tells_the_state_and_follows_no_planted_link(self):
        d = self.desktop
        d.write_briefing("2026-11-22.md", MORNING)
        d.start_program()
        victim = os.path.join(d.home, "victim")
        with open(victim, "w") as file:
            file.write("untouched")
        if os.path.lexists(REPORT):
            os.remove(REPORT)
        os.symlink(victim, REPORT)
        d.signal("report")
        d.wait_for(lambda: not os.path.islink(REPORT), "the report")
        with open(victim) as file:
            self.assertEqual(file.read(), "untouched")
        d.move(333, 222)
        report = d.report()
        self.assertEqual(report, {
            "expanded": False, "theme": "dark", "panelFrame": "{{250, 64}, {780, 736}}", "panelVisible": True,
            "panelOnScreen": True, "screenFrame": "{{0, 0}, {1280, 800}}", "briefings": 1, "suppressed": False,
            "pointer": "{333, 578}", "inZone": False, "spaceID": 0, "spaceType": 0})
        d.move(*NOTCH)
        self.assertTrue(d.report()["inZone"])



class WithoutCompositor(FirstLight, unittest.TestCase):
    pass


class WithCompositor(FirstLight, unittest.TestCase):
    compositor = True


if __name__ == "__main__":
    unittest.main(verbosity=2)
