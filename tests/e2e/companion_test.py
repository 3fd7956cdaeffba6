"""dawnlyctl beside the running program: both change the same files, and neither undoes what the other did."""

import json
import os
import subprocess
import time
import unittest

from desktop import Desktop

COMPANION = os.environ["DAWNLYCTL"]
WRITERS, TODOS_EACH = 4, 10


class Companion(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)

    def companion(self, *arguments, code=0):
        done = subprocess.run([COMPANION, *arguments], env=self.desktop.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, code, done.stderr)
        return done.stdout

    def todos(self):
        with open(os.path.join(self.desktop.briefings, "todos.json")) as file:
            return [todo["text"] for todo in json.load(file)["todos"]]

    def test_it_speaks_to_the_program_that_runs(self):
        self.companion("report", code=1)
        self.desktop.start_program()
        self.assertFalse(json.loads(self.companion("report"))["expanded"])
        self.companion("expand")
        self.desktop.wait_for(lambda: json.loads(self.companion("report"))["expanded"], "the panel to unfold")

    def test_todos_added_at_the_same_time_are_all_kept(self):
        self.desktop.start_program()
        loop = 'for i in $(seq %d); do "%s" todo add "writer $0 todo $i" || exit 1; done' % (TODOS_EACH, COMPANION)
        writers = [self.desktop.start("bash", "-c", loop, str(writer)) for writer in range(WRITERS)]
        # Meanwhile the program takes over the action items of a briefing that grows.
        rounds = 0
        while rounds == 0 or any(writer.poll() is None for writer in writers):
            rounds += 1
            self.write_items(rounds)
            time.sleep(0.6)
            self.assertLess(rounds, 100)
        for writer in writers:
            self.assertEqual(writer.wait(), 0)
        added = {"writer %d todo %d" % (writer, todo + 1) for writer in range(WRITERS) for todo in range(TODOS_EACH)}
        self.desktop.wait_for(lambda: "item %d" % rounds in self.todos(), "the briefing's last item")
        self.assertLessEqual(added, set(self.todos()))
        # The program knows them all: what it writes next has them too.
        time.sleep(2.5)
        self.write_items(rounds + 1)
        self.desktop.wait_for(lambda: "item %d" % (rounds + 1) in self.todos(), "one more item")
        self.assertLessEqual(added, set(self.todos()))
        self.assertEqual(len(self.todos()), len(set(self.todos())))

    def write_items(self, count):
        items = "".join("- [ ] item %d\n" % (item + 1) for item in range(count))
        self.desktop.write_briefing(time.strftime("%Y-%m-%d.md"), "# Day\n### ✅ Action Items\n" + items)


if __name__ == "__main__":
    unittest.main()
