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
