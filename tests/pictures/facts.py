"""Coarse facts of a picture: those that hold whatever the machine, the driver and the viewer's version."""

import dataclasses

from PIL import Image

# Two channels this far apart are still the same background.
BACKGROUND_TOLERANCE = 12
# Side of the square at each corner that has to be background.
CORNER = 24


@dataclasses.dataclass(frozen=True)
class Colour:
    """A colour that a picture has to show: pixels whose channels are all within `tolerance` of it, as a
    share of the pixels of the object."""

    name: str
    rgb: tuple
    tolerance: int
    least: float
    most: float


@dataclasses.dataclass(frozen=True)
class Expected:
    size: tuple
    least_cover: float  # Share of the picture that the object takes.
    most_cover: float
    colours: tuple


def distance(a, b):
    return max(abs(x - y) for x, y in zip(a, b))


def corner_pixels(image):
    width, height = image.size
    for x in (*range(CORNER), *range(width - CORNER, width)):
        for y in (*range(CORNER), *range(height - CORNER, height)):
            yield image.getpixel((x, y))


def background_of(image):
    return image.getpixel((0, 0))


def object_pixels(image, background):
    """Place and colour of all that is no background."""
    width, height = image.size
    data = image.load()
    for y in range(height):
        for x in range(width):
            if distance(data[x, y], background) > BACKGROUND_TOLERANCE:
                yield x, y, data[x, y]


def share(pixels, colour):
    return sum(distance(rgb, colour.rgb) <= colour.tolerance for _, _, rgb in pixels) / len(pixels)


def wrong_corners(image, background):
    strange = [rgb for rgb in corner_pixels(image) if distance(rgb, background) > BACKGROUND_TOLERANCE]
    return [f"{len(strange)} pixels at the corners are no background"] if strange else []


def wrong_cover(image, pixels, expected):
    cover = len(pixels) / (image.size[0] * image.size[1])
    if expected.least_cover <= cover <= expected.most_cover:
        return []
    return [f"the object covers {cover:.3f}, not {expected.least_cover} to {expected.most_cover}"]


def wrong_place(image, pixels):
    """The middle of the object's frame lies in the middle quarter of the picture."""
    wrong = []
    for axis, name in ((0, "width"), (1, "height")):
        places = [pixel[axis] for pixel in pixels]
        middle = (min(places) + max(places)) / 2 / image.size[axis]
        if not 0.375 <= middle <= 0.625:
            wrong.append(f"the object's middle is at {middle:.2f} of the {name}")
    return wrong


def wrong_colours(pixels, expected):
    wrong = []
    for colour in expected.colours:
        found = share(pixels, colour)
        if not colour.least <= found <= colour.most:
            wrong.append(f"{colour.name} {colour.rgb}: {found:.4f}, not {colour.least} to {colour.most}")
    return wrong


def wrongs(image, expected):
    """What is wrong with a picture, one line for each; empty when it is as expected."""
    if image.size != expected.size:
        return [f"the picture is {image.size}, not {expected.size}"]
    background = background_of(image)
    pixels = list(object_pixels(image, background))
    if not pixels:
        return ["the picture is empty"]
    return [
        *wrong_corners(image, background),
        *wrong_cover(image, pixels, expected),
        *wrong_place(image, pixels),
        *wrong_colours(pixels, expected),
    ]
