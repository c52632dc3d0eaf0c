#!/usr/bin/env python3
"""Renders what a document exports to and compares coarse facts of the picture.

    check.py TOOL SAMPLES NAME [PICTURE]    one row of the table; the picture is kept where it is asked for
"""

import pathlib
import sys

from facts import Colour, Expected, wrongs
from render import SIZE, RenderError, picture_of

# What a picture has to show, by the sample's file name.
SAMPLES = {
    "gearbox.gltf": Expected(
        SIZE,
        0.12,
        0.25,
        (
            Colour("paint of the housing", (64, 78, 92), 20, 0.35, 0.65),
            Colour("cover", (218, 222, 222), 16, 0.20, 0.42),
            Colour("yellow stripes of the name plate", (190, 155, 90), 30, 0.005, 0.04),
            Colour("black stripes of the name plate", (42, 38, 28), 22, 0.005, 0.04),
            Colour("lamp", (138, 210, 146), 42, 0.0012, 0.02),
        ),
    ),
    "bracket.gltf": Expected(
        SIZE,
        0.14,
        0.28,
        (
            Colour("zinc in the light", (186, 187, 189), 16, 0.30, 0.60),
            Colour("zinc in the shade", (122, 123, 125), 20, 0.30, 0.60),
            Colour("signal yellow", (225, 205, 100), 35, 0.02, 0.08),
        ),
    ),
    "desk-lamp.ovdl": Expected(
        SIZE,
        0.06,
        0.11,
        (
            Colour("teal lacquer of base, rod and shade", (30, 100, 108), 30, 0.45, 0.75),
            Colour("upper rod in the red of its component", (190, 40, 30), 40, 0.02, 0.07),
            Colour("letters and stars whose surroundings are masked", (240, 215, 120), 35, 0.015, 0.05),
            Colour("surroundings of the letter whose mask is inverted", (200, 100, 40), 35, 0.003, 0.02),
            Colour("brass of knuckles", (150, 95, 30), 40, 0.008, 0.04),
        ),
    ),
    "bicycle-bell.ovdl": Expected(
        SIZE,
        0.11,
        0.18,
        (
            Colour("red dome", (190, 40, 30), 40, 0.50, 0.80),
            Colour("black plastic of base and cap", (25, 25, 25), 20, 0.08, 0.22),
            Colour("chrome of the lever", (190, 192, 194), 25, 0.02, 0.10),
            Colour("white of the bird", (235, 235, 230), 25, 0.02, 0.10),
            Colour("blue wing", (45, 60, 130), 35, 0.006, 0.04),
        ),
    ),
}


def main(tool, samples, name, picture=None):
    image = picture_of(tool, pathlib.Path(samples) / name)
    if picture:
        pathlib.Path(picture).parent.mkdir(parents=True, exist_ok=True)
        image.save(picture, optimize=True)
    wrong = wrongs(image, SAMPLES[name])
    for line in wrong:
        print(f"{name}: {line}", file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    try:
        sys.exit(main(*sys.argv[1:]))
    except RenderError as error:
        sys.exit(str(error))
