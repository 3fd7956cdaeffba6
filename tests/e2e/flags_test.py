"""Flags on cards, made by swiping them with the mouse, as the agent reads them in feedback.json and as they stand after a restart."""

import json
import os
import time
import unittest

from desktop import BRIEF_RIGHT, COLUMNS_TOP, NOTCH, WIDTH, Desktop

MORNING = "# Morning\n### Schedule\n- **Alpha** report\n- **Beta** call\n- **Gamma** lunch\n- [ ] 💼 Send the deck\n"
CARD_Y = tuple(COLUMNS_TOP + 56 + 41 * card for card in range(3))


class Flags(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop(window_manager=True)
        self.addCleanup(self.desktop.close)
        # The checkbox stands alone, or it would be read as the end of the card above.
        self.desktop.write_briefing("2026-11-22.md", MORNING.replace("- [ ]", "### Action Items\n- [ ]"))

    def open_panel(self):
        self.desktop.move(*NOTCH)
        self.desktop.wait_for(lambda: self.desktop.report()["expanded"], "the panel to unfold")
        time.sleep(0.9)

    def swipe(self, card, *distances):
        """Drags a card sideways by so many points, again and again."""
        for distance in distances:
            start = (WIDTH // 2 - 150, CARD_Y[card])
            self.desktop.drag(start, (start[0] + distance, start[1] + 2))
            time.sleep(0.5)

    def is_priority(self, card):
        """Whether the card is drawn in the colour of priorities."""
        red, _, blue = self.desktop.screenshot().at(BRIEF_RIGHT - 20, CARD_Y[card])
        return red - blue > 20

    def test_flags_reach_the_agent_and_survive_a_restart(self):
        d = self.desktop
        program = d.start_program()
        d.wait_for(lambda: d.read("feedback.json").get("untouched") == ["Alpha report", "Beta call", "Gamma lunch"],
                   "the untouched cards")
        self.open_panel()
        self.assertFalse(self.is_priority(0))
        self.swipe(0, 80)
        self.swipe(1, -80)
        d.wait_for(lambda: d.read("feedback.json").get("untouched") == ["Gamma lunch"], "the feedback to follow", 3)
        self.swipe(2, -80, -80)
        d.wait_for(lambda: len(d.read("feedback.json").get("cleared", [])) == 2, "the hidden card")
        feedback = d.read("feedback.json")
        self.assertEqual(list(feedback), ["cleared", "note", "prio", "reminders", "untouched", "updated"])
        self.assertEqual(feedback["cleared"], ["Beta call", "Gamma lunch"])
        self.assertEqual([entry["text"] for entry in feedback["prio"]], ["Alpha report"])
        self.assertTrue(self.is_priority(0))
        self.assertEqual(d.screenshot().card_count(), 2)

        program.kill()
        program.wait()
        d.start_program()
        d.move(100, 700)
        self.open_panel()
        self.assertTrue(self.is_priority(0))
        self.assertEqual(d.screenshot().card_count(), 2)
        self.assertEqual([todo["text"] for todo in d.read("todos.json")["todos"]], ["Send the deck"])

        # And everything back again, the hidden card by the button under the sections. A priority is not cleared.
        self.swipe(0, 80)
        self.swipe(1, 80, 80)
        d.click(330, COLUMNS_TOP + 154)
        d.wait_for(lambda: d.screenshot().card_count() == 3, "the hidden card to come back")
        d.wait_for(lambda: d.read("feedback.json").get("cleared") == ["Gamma lunch"], "the cleared card to be restored")
        self.assertEqual(d.read("feedback.json")["prio"], [])

    def test_the_panels_own_menu_quits_the_program(self):
        d = self.desktop
        program = d.start_program()
        self.open_panel()
        d.click(WIDTH // 2, 60, button=3)  # beside the cards
        time.sleep(0.5)
        self.assertIsNone(program.poll())
        d.key("Up", "Return")  # the last entry
        d.wait_for(lambda: program.poll() is not None, "the program to end")
        self.assertEqual(program.returncode, 0)

    def test_another_programs_flags_show_within_seconds(self):
        d = self.desktop
        d.start_program()
        self.open_panel()
        self.swipe(0, 80)
        d.wait_for(lambda: os.path.exists(d.briefings + "/itemflags.json"), "the flags to be written")
        time.sleep(2.5)
        flags = d.read("itemflags.json")
        now = list(flags["dates"].values())[0]
        flags["prio"] = {"gamma-lunch": "Gamma lunch"}
        flags["dates"] = {"gamma-lunch": now}
        with open(d.briefings + "/itemflags.json", "w") as file:
            json.dump(flags, file)
        d.wait_for(lambda: self.is_priority(2) and not self.is_priority(0), "the other program's flag", 5)


if __name__ == "__main__":
    unittest.main(verbosity=2)
