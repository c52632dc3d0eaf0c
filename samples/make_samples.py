#!/usr/bin/env python3
"""Makes the sample documents of this folder. The results are committed; run it after a change here.

    python3 samples/make_samples.py

gearbox.gltf   an assembly: nested levels, shared meshes, mirrored and stretched placements,
               transparency, emission, an embedded image, a light and a camera
bracket.gltf   a part: one mesh that stands where the file's origin is
desk-lamp/, bicycle-bell/   see make_documents.py

Lengths are metres, y is up. Only the standard library is used, and the image is stored without
compression, whose bytes change from one version of a library to the next: a second run changes
nothing.
"""

import base64
import json
import math
import pathlib
import struct
import sys
import zlib

sys.dont_write_bytecode = True
import make_documents

FOLDER = pathlib.Path(__file__).resolve().parent


# ------------------------------------------------------------------------------------------ surfaces
# A surface is (positions, normals, uvs or None, triangles). Each one becomes a primitive.


def flat_polygon(corners, normal, uvs=None):
    """A convex polygon, as a fan."""
    triangles = [(0, i, i + 1) for i in range(1, len(corners) - 1)]
    return list(corners), [normal] * len(corners), uvs, triangles


def joined(*surfaces):
    """Several surfaces as one."""
    positions, normals, triangles = [], [], []
    for surface in surfaces:
        first = len(positions)
        positions += surface[0]
        normals += surface[1]
        triangles += [tuple(first + i for i in triangle) for triangle in surface[3]]
    return positions, normals, None, triangles


def box(size, centre=(0, 0, 0)):
    """Six flat sides."""
    sides = [flat_polygon(corners, normal) for corners, normal in make_documents.box_sides(size, centre)]
    return joined(*sides)


def circle(count):
    return [(math.cos(2 * math.pi * i / count), math.sin(2 * math.pi * i / count)) for i in range(count)]


def mantle(radius, z0, z1, count, inward=False):
    """The round side of a cylinder about z, with smooth normals."""
    positions, normals, triangles = [], [], []
    sign = -1 if inward else 1
    for x, y in circle(count):
        for z in (z0, z1):
            positions.append((radius * x, radius * y, z))
            normals.append((sign * x, sign * y, 0.0))
    for i in range(count):
        a, b = 2 * i, 2 * ((i + 1) % count)
        quads = [(a, b, b + 1), (a, b + 1, a + 1)]
        triangles += [q[::-1] for q in quads] if inward else quads
    return positions, normals, None, triangles


def ring(inner, outer, z, up, count):
    """A flat ring at one height; inner radius 0 gives a disc."""
    normal = (0.0, 0.0, 1.0 if up else -1.0)
    if inner == 0:
        corners = [(outer * x, outer * y, z) for x, y in circle(count)]
        return flat_polygon(corners if up else corners[::-1], normal)
    positions, triangles = [], []
    for x, y in circle(count):
        positions += [(inner * x, inner * y, z), (outer * x, outer * y, z)]
    for i in range(count):
        a, b = 2 * i, 2 * ((i + 1) % count)
        quads = [(a, a + 1, b + 1), (a, b + 1, b)]
        triangles += quads if up else [q[::-1] for q in quads]
    return positions, [normal] * len(positions), None, triangles


def cylinder(radius, length, count):
    half = length / 2
    return [
        mantle(radius, -half, half, count),
        joined(ring(0, radius, half, True, count), ring(0, radius, -half, False, count)),
    ]


def tube(inner, outer, length, count):
    half = length / 2
    return [
        mantle(outer, -half, half, count),
        mantle(inner, -half, half, count, inward=True),
        joined(ring(inner, outer, half, True, count), ring(inner, outer, -half, False, count)),
    ]


def gear(teeth, module, bore, width, bore_count=24):
    """A spur gear with straight flanks: the toothed rim, two sides, the bore."""
    root = module * (teeth - 2.5) / 2
    tip = module * (teeth + 2) / 2
    outline = []
    for tooth in range(teeth):
        for part, radius in ((0.0, root), (0.3, root), (0.42, tip), (0.68, tip), (0.8, root)):
            angle = 2 * math.pi * (tooth + part) / teeth
            outline.append((radius * math.cos(angle), radius * math.sin(angle)))
    half = width / 2
    rim = []
    for i, (x0, y0) in enumerate(outline):
        x1, y1 = outline[(i + 1) % len(outline)]
        length = math.hypot(x1 - x0, y1 - y0)
        normal = ((y1 - y0) / length, (x0 - x1) / length, 0.0)
        rim.append(flat_polygon([(x0, y0, -half), (x1, y1, -half), (x1, y1, half), (x0, y0, half)], normal))
    sides = []
    for z, up in ((half, True), (-half, False)):
        # Between the outline and the bore, a quad for each piece of the outline.
        for i, (x0, y0) in enumerate(outline):
            x1, y1 = outline[(i + 1) % len(outline)]
            inner = [(bore * x / math.hypot(x, y), bore * y / math.hypot(x, y)) for x, y in ((x0, y0), (x1, y1))]
            corners = [(*inner[0], z), (x0, y0, z), (x1, y1, z), (*inner[1], z)]
            sides.append(flat_polygon(corners if up else corners[::-1], (0.0, 0.0, 1.0 if up else -1.0)))
    return [joined(*rim), joined(*sides), mantle(bore, -half, half, bore_count, inward=True)]


def plate(width, height):
    """A rectangle that looks along z, with texture coordinates."""
    w, h = width / 2, height / 2
    corners = [(-w, -h, 0.0), (w, -h, 0.0), (w, h, 0.0), (-w, h, 0.0)]
    return flat_polygon(corners, (0.0, 0.0, 1.0), [(0.0, 1.0), (1.0, 1.0), (1.0, 0.0), (0.0, 0.0)])


# ---------------------------------------------------------------------------------------- the writer


class Document:
    """Collects meshes, materials and nodes, and writes them as one .gltf file."""

    def __init__(self):
        self.bytes = bytearray()
        self.json = {
            "asset": {"version": "2.0", "generator": "samples/make_samples.py"},
            "scene": 0,
            "scenes": [{"nodes": []}],
            "nodes": [],
            "meshes": [],
            "materials": [],
            "accessors": [],
            "bufferViews": [],
        }

    def material(self, name, colour, metallic=0.0, roughness=0.5, **more):
        pbr = {"baseColorFactor": list(colour), "metallicFactor": metallic, "roughnessFactor": roughness}
        pbr.update(more.pop("pbr", {}))
        self.json["materials"].append({"name": name, "pbrMetallicRoughness": pbr, **more})
        return len(self.json["materials"]) - 1

    def mesh(self, name, surfaces, material):
        """`material` is one index for all surfaces, or one a surface."""
        materials = material if isinstance(material, list) else [material] * len(surfaces)
        primitives = [self._primitive(s, m) for s, m in zip(surfaces, materials)]
        self.json["meshes"].append({"name": name, "primitives": primitives})
        return len(self.json["meshes"]) - 1

    def node(self, name, parent=None, **fields):
        index = len(self.json["nodes"])
        self.json["nodes"].append({"name": name, **fields})
        if parent is None:
            self.json["scenes"][0]["nodes"].append(index)
        else:
            self.json["nodes"][parent].setdefault("children", []).append(index)
        return index

    def image(self, png):
        """An image inside the document; gives the index of a texture that shows it."""
        uri = "data:image/png;base64," + base64.b64encode(png).decode()
        self.json.setdefault("images", []).append({"uri": uri})
        self.json.setdefault("textures", []).append({"source": len(self.json["images"]) - 1})
        return len(self.json["textures"]) - 1

    def write(self, path):
        uri = "data:application/octet-stream;base64," + base64.b64encode(bytes(self.bytes)).decode()
        self.json["buffers"] = [{"byteLength": len(self.bytes), "uri": uri}]
        path.write_text(json.dumps(self.json, indent=1) + "\n", encoding="utf-8")

    def _primitive(self, surface, material):
        positions, normals, uvs, triangles = surface
        attributes = {
            "POSITION": self._floats(positions, "VEC3", bounds=True),
            "NORMAL": self._floats(normals, "VEC3"),
        }
        if uvs:
            attributes["TEXCOORD_0"] = self._floats(uvs, "VEC2")
        indices = [i for triangle in triangles for i in triangle]
        view = self._view(struct.pack(f"<{len(indices)}H", *indices), 34963)
        return {
            "attributes": attributes,
            "indices": self._accessor(view, 5123, len(indices), "SCALAR"),
            "material": material,
        }

    def _floats(self, rows, kind, bounds=False):
        flat = [value for row in rows for value in row]
        packed = struct.pack(f"<{len(flat)}f", *flat)
        accessor = self._accessor(self._view(packed, 34962), 5126, len(rows), kind)
        if bounds:
            # As the file has them, which is in single precision.
            stored = struct.unpack(f"<{len(flat)}f", packed)
            width = len(rows[0])
            self.json["accessors"][accessor]["min"] = [min(stored[i::width]) for i in range(width)]
            self.json["accessors"][accessor]["max"] = [max(stored[i::width]) for i in range(width)]
        return accessor

    def _view(self, data, target):
        self.bytes += b"\0" * (-len(self.bytes) % 4)
        view = {"buffer": 0, "byteOffset": len(self.bytes), "byteLength": len(data), "target": target}
        self.bytes += data
        self.json["bufferViews"].append(view)
        return len(self.json["bufferViews"]) - 1

    def _accessor(self, view, component, count, kind):
        self.json["accessors"].append(
            {"bufferView": view, "componentType": component, "count": count, "type": kind}
        )
        return len(self.json["accessors"]) - 1


def striped_png(size):
    """A square image of brass with dark stripes."""
    rows = b""
    for y in range(size):
        rows += b"\0"
        for x in range(size):
            rows += bytes((60, 50, 30) if (x + y) // 4 % 2 else (200, 170, 90))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)
    return (
        b"\x89PNG\r\n\x1a\n"
        + chunk(b"IHDR", header)
        + chunk(b"IDAT", zlib.compress(rows, 0))
        + chunk(b"IEND", b"")
    )


# ----------------------------------------------------------------------------------------- documents

QUARTER_ABOUT_Y = [0.0, math.sqrt(0.5), 0.0, math.sqrt(0.5)]
QUARTER_UP = [-math.sqrt(0.5), 0.0, 0.0, math.sqrt(0.5)]  # z becomes y


def gearbox():
    d = Document()
    steel = d.material("Steel", (0.45, 0.47, 0.5, 1.0), metallic=1.0, roughness=0.35)
    bright = d.material("Bright steel", (0.75, 0.76, 0.78, 1.0), metallic=1.0, roughness=0.15)
    paint = d.material("Grey paint", (0.08, 0.12, 0.16, 1.0), roughness=0.6)
    glass = d.material(
        "Acrylic", (0.6, 0.8, 0.9, 0.35), roughness=0.05, alphaMode="BLEND", doubleSided=True
    )
    lamp = d.material("Lamp", (0.1, 0.8, 0.2, 1.0), roughness=0.3, emissiveFactor=[0.05, 0.6, 0.1])
    label = d.material(
        "Label", (1.0, 1.0, 1.0, 1.0), pbr={"baseColorTexture": {"index": d.image(striped_png(16))}}
    )

    base = d.mesh(
        "Base",
        [
            box((0.24, 0.01, 0.14), (0, -0.045, 0)),
            box((0.24, 0.08, 0.01), (0, 0, -0.065)),
            box((0.24, 0.08, 0.01), (0, 0, 0.065)),
        ],
        paint,
    )
    cover = d.mesh("Cover", [box((0.24, 0.005, 0.14), (0, 0.0425, 0))], glass)
    shaft = d.mesh("Shaft", cylinder(0.008, 0.18, 16), bright)
    pinion = d.mesh("Pinion", gear(12, 0.004, 0.008, 0.02), steel)
    wheel = d.mesh("Wheel", gear(30, 0.004, 0.008, 0.018), [steel, steel, bright])
    race = d.mesh("Bearing", tube(0.008, 0.016, 0.01, 16), [bright, bright, steel])
    head = cylinder(0.004, 0.004, 6)
    bolt = d.mesh("Bolt", [joined(*head), *cylinder(0.002, 0.02, 8)], steel)
    foot = d.mesh(
        "Foot",
        [box((0.03, 0.006, 0.12), (0.015, -0.05, 0)), box((0.006, 0.03, 0.12), (0.003, -0.035, 0))],
        paint,
    )
    light = d.mesh("Lamp", [box((0.01, 0.006, 0.01))], lamp)
    sign = d.mesh("Name plate", [plate(0.06, 0.03)], label)

    root = d.node("Gearbox")
    housing = d.node("Housing", root)
    d.node("Base", housing, mesh=base)
    d.node("Cover", housing, mesh=cover)
    d.node("Name plate", housing, mesh=sign, translation=[0.0, 0.0, 0.0705])
    feet = d.node("Feet", housing)
    d.node("Foot", feet, mesh=foot, translation=[0.12, 0.0, 0.0])
    d.node("Foot", feet, mesh=foot, translation=[-0.12, 0.0, 0.0], scale=[-1.0, 1.0, 1.0])

    drive = d.node("Input shaft", root, translation=[-0.06, 0.0, 0.0])
    d.node("Shaft", drive, mesh=shaft)
    d.node("Pinion", drive, mesh=pinion)
    bearings = d.node("Bearings", drive)
    d.node("Bearing", bearings, mesh=race, translation=[0.0, 0.0, 0.06])
    d.node("Bearing", bearings, mesh=race, translation=[0.0, 0.0, -0.06])

    # A pitch angle that lets the teeth mesh, and a shaft that is the other one stretched.
    turned = [0.0, 0.0, math.sin(math.pi / 60), math.cos(math.pi / 60)]
    output = d.node("Output shaft", root, translation=[0.024, 0.0, 0.0])
    d.node("Shaft", output, mesh=shaft, scale=[1.0, 1.0, 1.25])
    d.node("Wheel", output, mesh=wheel, rotation=turned)
    bearings = d.node("Bearings", output)
    d.node("Bearing", bearings, mesh=race, translation=[0.0, 0.0, 0.06])
    d.node("Bearing", bearings, mesh=race, translation=[0.0, 0.0, -0.06], scale=[1.0, 1.0, -1.0])

    fasteners = d.node("Fasteners", root, translation=[0.0, 0.04, 0.0])
    for side, x in (("Left", -0.11), ("Right", 0.11)):
        row = d.node(side + " row", fasteners, translation=[x, 0.0, 0.0])
        for z in (-0.06, -0.02, 0.02, 0.06):
            d.node("Bolt", row, mesh=bolt, translation=[0.0, 0.0, z], rotation=QUARTER_UP)
    d.node("Lamp", root, mesh=light, translation=[0.1, 0.048, 0.05])

    d.json["extensionsUsed"] = ["KHR_lights_punctual"]
    d.json["extensions"] = {
        "KHR_lights_punctual": {
            "lights": [{"name": "Ceiling", "type": "point", "color": [1.0, 0.95, 0.85], "intensity": 40.0}]
        }
    }
    d.node("Ceiling", extensions={"KHR_lights_punctual": {"light": 0}}, translation=[0.2, 0.6, 0.3])
    d.json["cameras"] = [
        {"name": "Side", "type": "perspective", "perspective": {"yfov": 0.7, "znear": 0.01, "zfar": 10.0}}
    ]
    d.node("Camera", camera=0, translation=[0.5, 0.1, 0.0], rotation=QUARTER_ABOUT_Y)
    d.write(FOLDER / "gearbox.gltf")


def bracket():
    d = Document()
    zinc = d.material("Zinc", (0.55, 0.56, 0.58, 1.0), metallic=1.0, roughness=0.4)
    yellow = d.material("Signal yellow", (0.9, 0.6, 0.02, 1.0), roughness=0.5)
    surfaces = [box((0.08, 0.004, 0.05)), box((0.004, 0.05, 0.05), (-0.038, 0.027, 0)), *tube(0.004, 0.008, 0.02, 16)]
    mesh = d.mesh("Bracket", surfaces, [zinc, zinc, yellow, yellow, zinc])
    d.node("Bracket", mesh=mesh)
    d.write(FOLDER / "bracket.gltf")


if __name__ == "__main__":
    gearbox()
    bracket()
    make_documents.desk_lamp()
    make_documents.bicycle_bell()
