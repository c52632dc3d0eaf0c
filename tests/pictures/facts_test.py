#!/usr/bin/env python3
"""The facts have to be able to fail: pictures that are wrong in one thing each, drawn here, without a viewer."""

import unittest

from PIL import Image, ImageDraw

from facts import Colour, Expected, wrongs

GREY, RED, BLUE = (160, 160, 160), (200, 30, 30), (30, 30, 200)
EXPECTED = Expected(
    (200, 100), 0.10, 0.30, (Colour("red", RED, 20, 0.4, 0.6), Colour("blue", BLUE, 20, 0.4, 0.6))
)


def drawn(left=RED, right=BLUE, size=(200, 100), at=(70, 30), half=30, height=40):
    """Two boxes side by side, upper left corner at `at`, before a grey background."""
    image = Image.new("RGB", size, GREY)
    draw = ImageDraw.Draw(image)
    x, y = at
    draw.rectangle((x, y, x + half - 1, y + height - 1), left)
    draw.rectangle((x + half, y, x + 2 * half - 1, y + height - 1), right)
    return image


class Facts(unittest.TestCase):
    def refused(self, image, *words):
        text = "; ".join(wrongs(image, EXPECTED))
        for word in words:
            self.assertIn(word, text)

    def test_the_right_picture_passes(self):
        self.assertEqual(wrongs(drawn(), EXPECTED), [])

    def test_slightly_other_colours_pass(self):
        self.assertEqual(wrongs(drawn(left=(212, 40, 22)), EXPECTED), [])

    def test_an_empty_picture_is_refused(self):
        self.assertEqual(wrongs(Image.new("RGB", (200, 100), GREY), EXPECTED), ["the picture is empty"])

    def test_another_size_is_refused(self):
        self.assertEqual(len(wrongs(drawn(size=(200, 101)), EXPECTED)), 1)

    def test_a_missing_colour_is_refused(self):
        self.refused(drawn(right=(30, 200, 30)), "blue")

    def test_a_colour_that_took_over_is_refused(self):
        self.refused(drawn(right=RED), "red", "blue")

    def test_a_small_object_is_refused(self):
        self.refused(drawn(at=(96, 46), half=4, height=8), "covers")

    def test_a_large_object_is_refused(self):
        self.refused(drawn(at=(30, 10), half=70, height=80), "covers")

    def test_an_object_at_the_side_is_refused(self):
        self.refused(drawn(at=(135, 30)), "of the width")

    def test_an_object_at_the_bottom_is_refused(self):
        self.refused(drawn(at=(50, 66), half=50, height=34), "of the height")

    def test_an_object_in_a_corner_is_refused(self):
        image = drawn()
        ImageDraw.Draw(image).rectangle((190, 90, 199, 99), RED)
        self.refused(image, "corners")


if __name__ == "__main__":
    unittest.main()
