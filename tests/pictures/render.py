"""Pictures of what `raylume-dl export` writes, drawn by another maker's viewer (f3d) without a screen."""

import json
import os
import pathlib
import struct
import subprocess
import tempfile

from PIL import Image

SIZE = (400, 300)
VIEW_SECONDS = 100

# From the front, a little from the right and from above.
CAMERA = ["--up=+Y", "--camera-azimuth-angle=30", "--camera-elevation-angle=25"]
# Tone mapping, no jagged edges, transparent surfaces in their order.
QUALITY = ["--tone-mapping", "--fxaa", "--depth-peeling"]

GLB_HEADER = struct.Struct("<4sII")
CHUNK_HEADER = struct.Struct("<I4s")
LIGHTS = "KHR_lights_punctual"


class RenderError(Exception):
    """A program that failed, with what it said."""


def run(command, **more):
    try:
        done = subprocess.run([str(word) for word in command], capture_output=True, text=True, **more)
    except (OSError, subprocess.TimeoutExpired) as error:
        raise RenderError(f"{command[0]}: {error}") from error
    if done.returncode != 0:
        raise RenderError(f"{command[0]} ended with {done.returncode}: {done.stdout}{done.stderr}")


def export(tool, document, target):
    """The model of a document as binary glTF."""
    run([tool, "export", document, target])


def without_lights(glb):
    """The same file without its lights.

    The viewer lets no light grow weaker with its distance, so that one of some candela turns everything
    white. The studio below lights all documents alike.
    """
    length, _ = CHUNK_HEADER.unpack_from(glb, GLB_HEADER.size)
    start = GLB_HEADER.size + CHUNK_HEADER.size
    document = json.loads(glb[start : start + length])
    for holder in (document, *document.get("nodes", [])):
        holder.get("extensions", {}).pop(LIGHTS, None)
    for names in (document.get("extensionsUsed", []), document.get("extensionsRequired", [])):
        if LIGHTS in names:
            names.remove(LIGHTS)
    text = json.dumps({key: value for key, value in document.items() if value != []}).encode()
    text += b" " * (-len(text) % 4)
    rest = CHUNK_HEADER.pack(len(text), b"JSON") + text + glb[start + length :]
    return GLB_HEADER.pack(b"glTF", 2, GLB_HEADER.size + len(rest)) + rest


def write_studio(path):
    """The surroundings: grey below the horizon, light above it, with brighter panels. A Radiance picture.

    Metal shows nothing but what it mirrors, so it needs surroundings; the grey is the background too,
    since the camera looks down.
    """
    width, height = 64, 32

    def brightness(x, y):
        if y >= height // 2:
            return 0.35
        return 1.6 if y < height // 3 and (x // 8) % 2 == 0 else 1.0

    with open(path, "wb") as file:
        file.write(b"#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y %d +X %d\n" % (height, width))
        for y in range(height):
            for x in range(width):
                mantissa = int(brightness(x, y) * 64)
                file.write(bytes([mantissa, mantissa, mantissa, 130]))  # times 2^(130 - 136)


def view(glb, picture, studio):
    """A picture of a file that the viewer reads, as a PNG file."""
    # A configuration of the user's own must not change what is seen; neither may a screen that is there.
    environment = {key: value for key, value in os.environ.items() if key not in ("DISPLAY", "WAYLAND_DISPLAY")}
    size = ",".join(str(side) for side in SIZE)
    command = ["xvfb-run", "-a", "f3d", glb, "--output", picture, "--resolution", size, "--dry-run"]
    run([*command, f"--hdri={studio}", *CAMERA, *QUALITY], env=environment, timeout=VIEW_SECONDS)


def picture_of(tool, document):
    """Exports a document and gives the picture of it."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        exported, viewed = folder / "exported.glb", folder / "viewed.glb"
        studio, picture = folder / "studio.hdr", folder / "picture.png"
        export(tool, document, exported)
        viewed.write_bytes(without_lights(exported.read_bytes()))
        write_studio(studio)
        view(viewed, picture, studio)
        if not picture.exists():
            raise RenderError("the viewer wrote no picture")
        with Image.open(picture) as image:
            return image.convert("RGB")
