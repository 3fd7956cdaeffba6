"""Whether every main state still looks as in its reference picture. After a change that is meant to be seen,
`./dev screenshot states` draws the references anew."""

import os
import unittest

from likeness import differing_blocks
from PIL import Image, ImageChops, ImageDraw, ImageFilter
from states import states

REFERENCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../docs/images/states")
# Blocks that may differ: the pointer, a cursor that blinks.
TOLERATED = 2


def reference(name):
    return Image.open(os.path.join(REFERENCES, name + ".png")).convert("RGB")


class Pictures(unittest.TestCase):
    def test_every_state_looks_as_in_its_reference(self):
        drawn = set()
        for name, picture in states():
            drawn.add(name + ".png")
            if "PICTURES" in os.environ:  # for people to look at
                picture.save(os.path.join(os.environ["PICTURES"], name + ".png"))
            with self.subTest(name):
                different = differing_blocks(reference(name), picture)
                self.assertLessEqual(len(different), TOLERATED, "%s differs at %s" % (name, different[:20]))
        self.assertEqual(drawn, set(os.listdir(REFERENCES)))


class Measure(unittest.TestCase):
    """What the comparison must see, and what it must not, in a reference that was changed by hand."""

    def setUp(self):
        self.panel = reference("panel")

    def differing(self, changed):
        return len(differing_blocks(self.panel, changed))

    def find(self, colour, box):
        """Where in the box something of about this colour is."""
        part = self.panel.crop(box)
        distance = ImageChops.difference(part, Image.new("RGB", part.size, colour)).convert("L")
        left, top, right, bottom = distance.point(lambda level: 255 if level < 24 else 0).getbbox()
        return box[0] + left, box[1] + top, box[0] + right, box[1] + bottom

    def with_another(self, box, part):
        changed = self.panel.copy()
        changed.paste(part, box[:2])
        return changed

    def test_it_sees_what_a_person_sees(self):
        card, heading = (44, 184, 432, 262), (470, 114, 530, 134)
        join = self.find((48, 209, 88), (380, 104, 440, 140))
        star = self.find((255, 159, 10), (680, 180, 710, 210))
        red, green, blue = self.panel.crop(join).split()
        cases = {"another colour": self.with_another(join, Image.merge("RGB", (green, red, blue))),
                 "another word": self.with_another(heading, self.panel.crop((496, 184, 556, 204)))}
        for distance in (4, 8):
            for right, down in ((distance, 0), (0, distance)):
                moved = (card[0] + right, card[1] + down)
                cases["a card at %d, %d" % moved] = self.with_another(moved, self.panel.crop(card))
        for name, box in (("chip", join), ("symbol", star)):
            cases["a missing " + name] = self.panel.copy()
            background = self.panel.getpixel((box[0] - 4, (box[1] + box[3]) // 2))
            ImageDraw.Draw(cases["a missing " + name]).rectangle(box, fill=background)
        for name, changed in cases.items():
            with self.subTest(name):
                self.assertGreater(self.differing(changed), TOLERATED)

    def test_it_bears_with_other_edges_of_letters(self):
        self.assertEqual(self.differing(self.panel), 0)
        for changed in (
                # Softer, crisper, bolder, and everything a half and a whole pixel aside.
                self.panel.filter(ImageFilter.GaussianBlur(0.7)),
                self.panel.filter(ImageFilter.UnsharpMask(1, 60, 0)),
                self.panel.point(lambda level: min(255, int(level * 1.06))),
                Image.blend(self.panel, ImageChops.offset(self.panel, 1, 0), 0.5),
                ImageChops.offset(self.panel, 1, 0)):
            self.assertLessEqual(self.differing(changed), TOLERATED)


if __name__ == "__main__":
    unittest.main(verbosity=2)
