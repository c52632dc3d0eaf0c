#!/usr/bin/env python3
"""Makes the sample documents in JSON and all that lies beside them. The results are committed; run it after a
change here (make_samples.py does so too).

    python3 samples/make_documents.py

desk-lamp/      an assembly: three configurations, shared parts, a hidden component, appearances at every level,
                decals of every kind, lights of every kind, a side file with every track
bicycle-bell/   a part document with two configurations and a full scene

docs/formats/ovdl-json.md tells how the JSON reads. Lengths are metres, y is up. Only the standard library is used,
and images are stored without compression: a second run changes nothing.
"""

import json
import math
import pathlib
import struct
import zlib

FOLDER = pathlib.Path(__file__).resolve().parent


# ------------------------------------------------------------------------------------------- geometry
# A face is a list of strips; a strip is a list of vertices (point, normal, texture coordinates). The first
# triangle of a strip turns anticlockwise when it is seen from outside.


def unit(v):
    length = math.sqrt(sum(c * c for c in v))
    return tuple(c / length for c in v)


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def plus(a, b):
    return tuple(x + y for x, y in zip(a, b))


def times(a, s):
    return tuple(x * s for x in a)


def lathe(profile, count, smooth=False):
    """Turns a line of (radius, height) about y; what lies left of its direction is within. One strip a piece."""
    normals = []
    for (r0, y0), (r1, y1) in zip(profile, profile[1:]):
        length = math.hypot(r1 - r0, y1 - y0)
        normals.append(((y1 - y0) / length, (r0 - r1) / length))

    def at(point, normal, i, v):
        c, s = math.cos(2 * math.pi * i / count), -math.sin(2 * math.pi * i / count)
        if i == count:
            c, s = 1.0, 0.0
        return ((point[0] * c, point[1], point[0] * s), (normal[0] * c, normal[1], normal[0] * s), (i / count, v))

    def shared(piece):
        """The normal between a piece and the one before it."""
        if not smooth or piece in (0, len(normals)):
            return normals[min(piece, len(normals) - 1)]
        a, b = normals[piece - 1], normals[piece]
        return unit((a[0] + b[0], a[1] + b[1]))

    strips = []
    for piece in range(len(normals)):
        below = shared(piece) if smooth else normals[piece]
        above = shared(piece + 1) if smooth else normals[piece]
        v0, v1 = piece / len(normals), (piece + 1) / len(normals)
        strip = []
        for i in range(count + 1):
            strip += [at(profile[piece + 1], above, i, v1), at(profile[piece], below, i, v0)]
        strips.append(strip)
    return strips


def polygon(corners, normal, uvs=None):
    """A convex polygon that turns anticlockwise, as one strip."""
    order = [0]
    low, high = 1, len(corners) - 1
    while low <= high:
        order.append(low)
        if low != high:
            order.append(high)
        low, high = low + 1, high - 1
    return [[(corners[i], normal, uvs[i] if uvs else (0.0, 0.0)) for i in order]]


def disc(radius, y, up, count):
    ring = [(radius * math.cos(2 * math.pi * i / count), y, -radius * math.sin(2 * math.pi * i / count)) for i in range(count)]
    uvs = [(0.5 + 0.5 * p[0] / radius, 0.5 - 0.5 * p[2] / radius) for p in ring]
    if not up:
        ring, uvs = ring[::-1], uvs[::-1]
    return polygon(ring, (0.0, 1.0 if up else -1.0, 0.0), uvs)


def box_sides(size, centre):
    """Corners and normal of six sides: x, y, z, each to the positive side first."""
    for axis in range(3):
        for sign in (1, -1):
            u, v = (axis + 1) % 3, (axis + 2) % 3
            normal = [0.0, 0.0, 0.0]
            normal[axis] = float(sign)
            corners = []
            for a, b in ((-1, -1), (1, -1), (1, 1), (-1, 1)):
                corner = list(centre)
                corner[axis] += sign * size[axis] / 2
                corner[u] += sign * a * size[u] / 2
                corner[v] += b * size[v] / 2
                corners.append(tuple(corner))
            yield corners, tuple(normal)


def box(size, centre):
    """A face for each side, in the order of box_sides()."""
    uvs = [(0.0, 0.0), (1.0, 0.0), (1.0, 1.0), (0.0, 1.0)]
    return [polygon(corners, normal, uvs) for corners, normal in box_sides(size, centre)]


def placed(face, frame):
    """A face moved by (axes, translation)."""
    axes, move = frame

    def turn(v):
        return tuple(sum(v[k] * axes[k][i] for k in range(3)) for i in range(3))

    return [[(plus(turn(p), move), turn(n), uv) for p, n, uv in strip] for strip in face]


# ------------------------------------------------------------------------------------------ documents


class Single(float):
    """A number that the format keeps in single precision."""


def single(values):
    return [Single(v) for v in values]


def number_text(value):
    """The fewest digits that give the number again."""
    if not isinstance(value, Single):
        return repr(value)
    (bits,) = struct.unpack("<f", struct.pack("<f", value))
    for digits in range(1, 10):
        text = f"{bits:.{digits}g}"
        if struct.unpack("<f", struct.pack("<f", float(text)))[0] == bits:
            break
    value = float(text)
    return repr(int(value)) if value.is_integer() and abs(value) < 1e6 and str(value) != "-0.0" else repr(value)


def value_text(value, indent):
    """JSON as the library lays it out: a field a line in records, many numbers a line in arrays."""
    if isinstance(value, dict):
        return object_text(value, indent)
    if isinstance(value, (list, tuple)):
        return array_text(value, indent)
    if isinstance(value, bool) or not isinstance(value, (int, float)):
        return json.dumps(value, ensure_ascii=False)
    if isinstance(value, float) and not isinstance(value, Single) and value.is_integer() and abs(value) < 1e6:
        return repr(int(value)) if math.copysign(1, value) > 0 or value != 0 else "-0.0"
    return number_text(value)


def object_text(fields, indent):
    parts = [f'"{key}": {value_text(value, indent + 1)}' for key, value in fields.items()]
    line = "{" + ", ".join(parts) + "}"
    if len(line) + indent <= 100 and "\n" not in line:
        return line
    return "{" + (",\n" + " " * (indent + 1)).join(parts) + "}"


def array_text(values, indent):
    if any(isinstance(value, dict) for value in values):
        gap = "\n" + " " * (indent + 1)
        return "[" + gap + ("," + gap).join(value_text(value, indent + 1) for value in values) + "]"
    lines, line = [], "["
    for i, value in enumerate(values):
        text = value_text(value, indent + 1) + ("," if i + 1 < len(values) else "]")
        if len(line) + 1 + len(text) > 100 - indent:
            lines.append(line)
            line = text
        else:
            line += text if line == "[" else " " + text
    lines.append(line if values else "[]")
    return ("\n" + " " * (indent + 1)).join(lines)


class Document:
    """The lists of a document. Records are told by their number."""

    LISTS = (
        "textures renderAppearances materials visuals decals lights walls sceneData scenes components "
        "configurations"
    ).split()

    def __init__(self, version):
        self.version = version
        self.lists = {name: [] for name in self.LISTS}
        self.roots = {}
        self.tessellations = []

    def add(self, name, /, **fields):
        self.lists[name].append(fields)
        return len(self.lists[name]) - 1

    def texture(self, filename, width, height, **more):
        return self.add("textures", scale=[width, height], **more, filename=filename)

    def visual(self, name, colour, material, **more):
        return self.add(
            "visuals", activeFlag=1, materialProps=material, visualFlag=1, visualName=name, colorRef=packed(colour), **more
        )

    def material(self, name, user=None, texture=None, rendered=None, **more):
        fields = {"ambient": 0.3, "diffuse": 0.8, "specular": 0.4, "shininess": 0.3, **more}
        if texture is not None:
            fields["textureProperties"] = texture
        if rendered is not None:
            fields["rvAppearance"] = rendered
        return self.add("materials", **fields, idName=name.lower().replace(" ", "-"), userName=user or name)

    def rendered(self, colour, **more):
        fields = {"uDirection": single((1, 0, 0)), "vDirection": single((0, 1, 0)), "colorRef": packed(colour)}
        return self.add("renderAppearances", **fields, **more)

    def tessellation(self, part):
        self.tessellations.append(part.fields())
        return len(self.tessellations) - 1

    def write(self, path):
        document = {name: values for name, values in self.lists.items() if values}
        whole = {
            "ovdl": 1,
            "documentVersion": self.version,
            "displayListVersion": 8000,
            "document": {**document, **self.roots},
            "tessellations": self.tessellations,
        }
        path.write_text(value_text(whole, 0) + "\n", encoding="utf-8")


def packed(colour):
    """Red in the low byte."""
    return colour[0] | colour[1] << 8 | colour[2] << 16


class Part:
    """A tessellation: bodies of faces, with appearances by configuration."""

    def __init__(self, visuals, decals=None):
        self.visuals = visuals
        self.decals = decals or {}
        self.bodies, self.faces, self.infos = [], [], []

    def body(self, faces, visuals=None, shown=None, **more):
        """`faces` are (strips, id, visuals by configuration); `shown` is by configuration too."""
        fields = {"faces": [], **more}
        for strips, face_id, own in faces:
            fields["faces"].append(len(self.faces))
            self.faces.append(self._face(strips, face_id, own))
        if visuals:
            fields["bodyVizProps"] = [n for pair in visuals.items() for n in pair]
        if shown:
            fields["bodyPropInfos"] = []
            for config, value in shown.items():
                fields["bodyPropInfos"] += [config, len(self.infos)]
                self.infos.append({"shown": value})
        self.bodies.append(fields)

    def _face(self, strips, face_id, own):
        vertices = [vertex for strip in strips for vertex in strip]
        fields = {
            "stripCount": len(strips),
            "hasUVs": 1,
            "faceId": face_id,
            "faceKey": 1000 + face_id,
            "stripLengths": [len(strip) for strip in strips],
            "points": single(round(c, 6) + 0.0 for v in vertices for c in v[0]),
            "normals": single(round(c, 5) + 0.0 for v in vertices for c in v[1]),
            "uvs": single(round(c, 5) + 0.0 for v in vertices for c in v[2]),
        }
        if own:
            fields["faceVizProps"] = [{"config": config, "value": visual} for config, visual in own.items()]
            fields["vizPropModes"] = [{"config": config, "value": 1} for config in own]
        return fields

    def fields(self):
        fields = {
            "bodies": list(range(len(self.bodies))),
            "modelVizProps": [n for pair in self.visuals.items() for n in pair],
        }
        if self.decals:
            fields["decalsByConfig"] = [
                n for config, decals in self.decals.items() for n in (config, len(decals), *decals)
            ]
        fields["bodyRecords"] = self.bodies
        if self.infos:
            fields["propInfos"] = self.infos
        fields["faces"] = self.faces
        return fields


def xform(translation=(0, 0, 0), axes=((1, 0, 0), (0, 1, 0), (0, 0, 1)), scale=1):
    rounded = [round(c, 9) + 0.0 for axis in axes for c in axis]
    return {"matrix": rounded, "translation": [round(c, 9) + 0.0 for c in translation], "scale": scale}


def turned(degrees):
    """The axes after a turn about z."""
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return ((c, s, 0), (-s, c, 0), (0, 0, 1))


# --------------------------------------------------------------------------------------------- images


def png(width, height, pixel):
    rows = b"".join(b"\0" + b"".join(bytes(pixel(x, y)) for x in range(width)) for y in range(height))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 0)) + chunk(b"IEND", b"")


def bmp(width, height, pixel):
    """24 bits, rows from below, each filled up to four bytes."""
    rows = b""
    for y in reversed(range(height)):
        row = b"".join(bytes(reversed(pixel(x, y))) for x in range(width))
        rows += row + b"\0" * (-len(row) % 4)
    header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(rows), 2835, 2835, 0, 0)
    return b"BM" + struct.pack("<IHHI", 54 + len(rows), 0, 0, 54) + header + rows


def noise(x, y):
    """The same grain each time."""
    return ((x * 73 + y * 151 + x * y * 17) * 2654435761 >> 7) % 32


# A letter L and a lamp's cone: five columns of eight.
GLYPHS = ("1....111", "1...1111", "1..11.11", "1.111..1", "11111111")


def glyph(x, y):
    return GLYPHS[y * 5 // 32][x * 8 // 32] == "1"


# ------------------------------------------------------------------------------------------- the lamp

TEAL, STEEL, BRASS = (24, 96, 104), (150, 152, 158), (196, 152, 64)
WHITE, GREEN, GLOW, RED = (240, 238, 230), (40, 110, 50), (255, 226, 160), (190, 40, 30)


def lamp_appearances(d):
    felt = d.texture("felt.png", 0.04, 0.04, angle=15.0)
    brushed = d.texture("brushed.bmp", 0.05, 0.05)
    v = {}
    lacquer = d.material(
        "Lacquer",
        rendered=d.rendered(
            TEAL, index=3, flags=0x20 | 0x400, secondColorRef=packed((10, 40, 44)), shininess=Single(0.7),
            unitLevel=Single(0.25), levelA=Single(0.4), levelB=Single(0.1), levelC=Single(1.5), levelD=Single(0.05),
            mappingScalar=Single(1), weight=Single(1), filename="materials\\painted\\lacquer.r2m", shaderName="carpaint",
        ),
    )
    v["lacquer"] = d.visual("Lacquer", TEAL, lacquer)
    green = d.material("Green lacquer", rendered=d.rendered(GREEN, index=4, shininess=Single(0.7), shaderName="carpaint"))
    v["green"] = d.visual("Green lacquer", GREEN, green)
    # Without a render appearance, as older documents have it.
    v["steel"] = d.visual("Steel", STEEL, d.material("Steel", specular=0.9, shininess=0.6))
    v["enamel"] = d.visual("White enamel", WHITE, d.material("White enamel", specular=0.6))
    brass = d.material(
        "Brass",
        texture=brushed,
        rendered=d.rendered(
            BRASS, surfaceFinish=3, index=7, mappingType=2, shininess=Single(0.8), mappingScalar=Single(0.5),
            weight=Single(0.8), filename="materials\\metal\\brass.r2m", shaderName="texture",
        ),
    )
    v["brass"] = d.visual("Brass", BRASS, brass, materialFileName="materials\\metal\\brass")
    soft = d.material(
        "Felt", texture=felt,
        rendered=d.rendered((30, 90, 40), index=9, mappingType=3, mappingScalar=Single(1), shaderName="texture"),
    )
    v["felt"] = d.visual("Felt", (30, 90, 40), soft)
    glow = d.material("Glowing glass", emission=0.2, rendered=d.rendered(GLOW, index=11, luminous=Single(0.9), shaderName="glass"))
    v["glow"] = d.visual("Glowing glass", GLOW, glow)
    glass = d.material("Frosted glass", transparency=0.4, rendered=d.rendered(WHITE, index=12, levelB=Single(0.6), flags=0x400))
    v["glass"] = d.visual("Frosted glass", WHITE, glass)
    # The first of the two never reaches a model: a thread has to have a render appearance.
    v["thread"] = d.visual("Thread", RED, d.material("Thread", user="Thread"))
    v["drawn thread"] = d.visual(
        "Thread", (90, 90, 96), d.material("Drawn thread", user="thread", rendered=d.rendered((90, 90, 96), surfaceFinish=8, knurlFileNumber=2, shaderName="knurl"))
    )
    v["red"] = d.visual("Red anodised", RED, d.material("Red anodised", specular=0.8))
    return v


def lamp_decals(d):
    ink = d.material("Ink", ambient=0.5, diffuse=1.0, specular=0.0)
    print_ = d.material(
        "Print", rendered=d.rendered(
            (255, 255, 255), decalValue=2, flags=0x60, secondColorRef=packed((200, 200, 200)), decalAmbient=Single(0.4),
            decalDiffuse=Single(0.9), decalSpecular=Single(0.1), luminous=Single(0.05), weight=Single(0.5),
        ),
    )
    lying = dict(directions=[1, 0, 0, 0, 0, -1], hasDirections=True)
    standing = dict(directions=[1, 0, 0, 0, 1, 0], hasDirections=True)

    def mapping(face, **more):
        return {"faceId": face, **{k: Single(v) if isinstance(v, float) else v for k, v in more.items()}}

    decals = {}
    decals["brand"] = d.add(
        "decals", maskFileName="brand-mask.png", mappingScalar=Single(1), mappingKind=0,
        textureProperties=d.texture("brand.png", 0.05, 0.05, **lying), decalId=101,
        faceMappings=[mapping(1, angleUV=0.25)], materialProperties=ink, origin=single((0.02, 0.02, 0.025)),
    )
    decals["mirrored brand"] = d.add(
        "decals", maskFileName="brand-mask.png", maskInvert=1, mappingScalar=Single(1), mappingKind=0,
        textureProperties=d.texture("brand.png", 0.03, 0.03, **lying), decalId=102,
        faceMappings=[mapping(1, angle=10.0, transX=0.005, transY=-0.005, mirrored=1)], materialProperties=ink,
        origin=single((-0.05, 0.02, 0.06)),
    )
    decals["stars"] = d.add(
        "decals", mappingScalar=Single(1), useUnderlyingAppearance=1, mappingKind=1,
        textureProperties=d.texture("stars.png", 0.06, 0.04, **standing), decalId=103,
        faceMappings=[mapping(1, transU=1000.0, mirrored=1)], materialProperties=print_,
        projectionOffsetU=Single(0.002), projectionOffsetV=Single(0.001), origin=single((-0.03, -0.055, 0.08)),
        colorMask=[packed((255, 0, 255)), packed((0, 255, 0))],
    )
    decals["scale"] = d.add(
        "decals", mappingScalar=Single(1), mappingKind=2, textureProperties=d.texture("ruler.png", 0.1, 0.012, **standing),
        decalId=104, faceMappings=[mapping(1)], materialProperties=ink, origin=single((0.06, -0.006, 0.01)),
        colorMask=[packed((255, 255, 255))],
    )
    decals["dot"] = d.add(
        "decals", maskFileName="brand-mask.png", maskInvert=1, mappingScalar=Single(0.5), mappingKind=3,
        textureProperties=d.texture("brand.png", 0.014, 0.014, **standing), decalId=105,
        faceMappings=[mapping(2), mapping(3, mirrored=1)], materialProperties=print_, origin=single((-0.007, -0.007, 0.012)),
    )
    decals["sign"] = d.add(
        "decals", mappingScalar=Single(1), mappingKind=4,
        textureProperties=d.texture("ruler.png", 0.012, 0.012, angle=90.0, **lying), decalId=106,
        faceMappings=[mapping(12)], materialProperties=ink, origin=single((-0.006, 0.026, 0.062)),
    )
    return decals


def lamp_parts(d, v, decals):
    """Numbers of tessellations by name."""
    parts = {}

    # Configuration 0 stands on a table, 1 hangs on a wall: no switch there.
    base = Part({0: v["lacquer"], 1: v["steel"]}, {0: [decals["brand"], decals["mirrored brand"], decals["sign"]]})
    base.body(
        [
            (disc(0.085, 0.02, True, 32), 1, None),
            (lathe([(0.09, 0.0), (0.09, 0.016), (0.085, 0.02)], 32), 2, None),
            (disc(0.09, 0.0, False, 32), 3, {0: v["felt"], 1: v["enamel"]}),
        ],
        level=1,
    )
    switch = box((0.016, 0.006, 0.016), (0.0, 0.023, 0.056))
    base.body(
        [(face, 10 + i, None) for i, face in enumerate(switch) if i != 3], visuals={0: v["red"], 1: v["red"]},
        shown={0: 1, 1: 0}, flag=1, level=2,
    )
    parts["Base"] = d.tessellation(base)

    weight = Part({0: v["steel"]})
    weight.body([(disc(0.07, 0.012, True, 16), 1, None), (lathe([(0.07, 0.002), (0.07, 0.012)], 16), 2, None)])
    parts["Weight"] = d.tessellation(weight)

    # Lies along x, from its knuckle on.
    along_x = (((0, 1, 0), (1, 0, 0), (0, 0, -1)), (0, 0, 0))
    rod = Part({0: v["lacquer"]})
    rod.body(
        [
            (placed(lathe([(0.006, 0.01), (0.006, 0.21)], 12), along_x), 1, None),
            (placed(disc(0.006, 0.21, True, 12), along_x), 2, {0: v["brass"]}),
        ]
    )
    parts["Rod"] = d.tessellation(rod)

    # Its axis is z.
    along_z = (((1, 0, 0), (0, 0, 1), (0, -1, 0)), (0, 0, 0))
    knuckle = Part({0: v["steel"], 1: v["steel"]}, {0: [], 1: [decals["dot"]]})
    knuckle.body(
        [
            (placed(lathe([(0.013, -0.012), (0.013, 0.012)], 16), along_z), 1, None),
            (placed(disc(0.013, 0.012, True, 16), along_z), 2, None),
            (placed(disc(0.013, -0.012, False, 16), along_z), 3, None),
        ],
        visuals={0: v["brass"], 1: v["enamel"]},
    )
    parts["Knuckle"] = d.tessellation(knuckle)

    screw = Part({0: v["steel"], 1: v["steel"]})
    screw.body(
        [
            (placed(lathe([(0.006, 0.0), (0.006, 0.003), (0.004, 0.004)], 6), along_z), 1, None),
            (placed(disc(0.004, 0.004, True, 6), along_z), 2, None),
            (placed(lathe([(0.003, -0.03), (0.003, 0.0)], 8), along_z), 3, {0: v["thread"], 1: v["drawn thread"]}),
        ]
    )
    parts["Screw"] = d.tessellation(screw)

    # Hangs from its origin downwards.
    shade = Part({0: v["lacquer"], 1: v["green"]})
    outside = [(0.08, -0.1), (0.07, -0.07), (0.045, -0.035), (0.022, -0.02)]
    inside = [(0.02, -0.022), (0.043, -0.037), (0.067, -0.071), (0.077, -0.1)]
    shade.body(
        [
            (lathe(outside, 24, smooth=True), 1, None),
            (lathe(inside, 24, smooth=True), 2, {0: v["enamel"], 1: v["enamel"]}),
            (lathe([(0.077, -0.1), (0.08, -0.1)], 24), 3, None),
        ],
    )
    shade.body([(lathe([(0.022, -0.02), (0.016, 0.0)], 16), 4, None), (disc(0.016, 0.0, True, 16), 5, None)], visuals={0: v["steel"], 1: v["brass"]})
    parts["Shade"] = d.tessellation(shade)

    # 0 is lit, 1 is not.
    bulb = Part({0: v["glow"], 1: v["glass"]})
    ball = [(0.0001, -0.09)] + [
        (0.024 * math.sin(math.radians(a)), -0.066 - 0.024 * math.cos(math.radians(a))) for a in (30, 60, 90, 120, 150)
    ] + [(0.01, -0.022)]
    bulb.body([(lathe(ball, 16, smooth=True), 1, None)])
    parts["Bulb"] = d.tessellation(bulb)
    return parts


REACH = 0.22


def lamp_pose(d, parts, v, decals, foot, foot_axes, angles, lit, wall):
    """The components of a configuration, for the angles of lower arm, upper arm and head."""
    number = 1 if wall else 0
    made = []

    def component(name, part, config, place, **more):
        fields = {"name": name, "xform": place}
        fields.update({k: more.pop(k) for k in ("vizProps", "visible") if k in more})
        made.append(d.add("components", **fields, configName=CONFIGS[part][config], tessData=parts[part], configIndex=config, **more))

    component("Base-1@desk-lamp", "Base", number, xform(foot, foot_axes))
    if not wall:
        component("Weight-1@desk-lamp", "Weight", 0, xform(foot, foot_axes), visible=0)
    joint = plus(foot, times(foot_axes[1], 0.033))
    for arm, angle in ((1, angles[0]), (2, angles[1])):
        owner = f"Arm-{arm}@desk-lamp/"
        component(owner + "Knuckle-1@Arm", "Knuckle", arm - 1, xform(joint, turned(angle)))
        own = {"vizProps": v["red"]} if arm == 2 else {"decals": [decals["scale"]]}
        component(owner + "Rod-1@Arm", "Rod", 0, xform(joint, turned(angle)), **own)
        component(owner + "Screw-1@Arm", "Screw", arm - 1, xform(plus(joint, (0, 0, 0.012)), turned(angle)))
        joint = plus(joint, times(turned(angle)[0], REACH))
    head = turned(angles[2] + 90)  # The shade looks along -y of its own.
    component("Head-1@desk-lamp/Knuckle-1@Head", "Knuckle", 1, xform(joint, head), vizProps=v["brass"])
    component("Head-1@desk-lamp/Screw-1@Head", "Screw", 1, xform(plus(joint, (0, 0, 0.012)), head))
    component("Head-1@desk-lamp/Shade-1@Head", "Shade", number, xform(plus(joint, times(head[1], -0.013)), head), decals=[decals["stars"]])
    component("Head-1@desk-lamp/Bulb-1@Head", "Bulb", 0 if lit else 1, xform(plus(joint, times(head[1], -0.013)), head))
    return made, joint, times(head[1], -1)


CONFIGS = {
    "Base": ("Table", "Wall"), "Weight": ("Default",), "Rod": ("Default",), "Knuckle": ("Plain", "Marked"),
    "Screw": ("Bought", "Modelled"), "Shade": ("Teal", "Green"), "Bulb": ("Lit", "Dark"),
}


def stamp(value, kind):
    return "0x%016x" % struct.unpack("<Q", struct.pack(kind, value))[0]


def lamp_lights(d, joint, look):
    target = plus(joint, times(look, 0.4))
    rounded = [round(c, 9) for c in target]
    place = [round(c, 9) for c in joint]
    common = {"sourceEnabled": 1, "sourceFactorA": 0.1, "sourceFactorB": 0.8, "sourceFactorC": 0.2}
    d.add(
        "lights", lightType=2, **common, sourceOptionA=1, sourceOptionC=1, sourceValueG=0.5, sourceValueJ=1.25,
        sourceStamp=stamp(0.75, "<d"), lightIndex=0, packedColour=packed(GLOW), sourceVectorA=[0.0, -1.0, 0.0],
        sourceVectorB=place, sourceVectorC=rounded, sourceShapeB=45.0, sourceLevelB=2.0, sourceLevelC=3.0,
    )
    d.add(
        "lights", lightType=3, **common, sourceOptionC=1, sourceValueD=0.4, sourceValueE=0.3, sourceValueI=2.5,
        lightIndex=1, packedColour=packed(GLOW), sourceVectorA=[0.1, 0.2, 0.3], sourceVectorB=place, sourceShapeA=0.06,
        sourceLevelC=1.0,
    )
    d.add(
        "lights", lightType=4, **common, sourceOptionB=1, sourceValueF=0.6, sourceValueH=0.9, lightIndex=2,
        packedColour=packed((255, 255, 255)), sourceVectorB=[0.5, 1.0, 0.75],
    )
    # Noon at midsummer, over a floor whose normal is y.
    d.add(
        "lights", lightType=6, **common, sourceOptionA=1, sourceHaze=0.25, sourceStamp=stamp(1718971200, "<q"), lightIndex=3,
        packedColour=packed((255, 250, 235)), sourceVectorA=[0.25, 0.9, 0.35], sourceVectorB=[0.0, 0.0, -1.0],
        sourceVectorC=[48.2, 16.4, 0.0],
    )
    # Two of types that mean nothing to most hosts, which get a direction of them. The first is switched off.
    d.add("lights", lightType=1, sourceOptionA=2, lightIndex=4, packedColour=packed((128, 160, 255)), sourceVectorA=[0.0, 0.0, 1.0])
    d.add(
        "lights", lightType=5, sourceEnabled=2, sourceOptionB=1, lightIndex=5, packedColour=packed((255, 200, 120)),
        sourceVectorA=[0.3, 0.6, 0.1],
    )
    return list(range(6))


def desk_lamp():
    d = Document(12000)
    v = lamp_appearances(d)
    decals = lamp_decals(d)
    parts = lamp_parts(d, v, decals)
    upright = ((1, 0, 0), (0, 1, 0), (0, 0, 1))
    # On a wall the base stands on its side, and its y points along x.
    sideways = ((0, -1, 0), (1, 0, 0), (0, 0, 1))
    reading, joint, look = lamp_pose(d, parts, v, decals, (0, 0, 0), upright, (112, 32, -62), True, False)
    folded, _, _ = lamp_pose(d, parts, v, decals, (0, 0, 0), upright, (150, 18, -90), False, False)
    wall, _, _ = lamp_pose(d, parts, v, decals, (-0.1, 0.3, 0), sideways, (28, 332, -80), True, True)
    for name, components in (("Reading", reading), ("Folded", folded), ("Wall", wall)):
        d.add("configurations", name=name, components=components)
    lights = lamp_lights(d, joint, look)
    d.add("sceneData", shadowFlag=1, backgroundKind=2, backgroundColor1=[0.2, 0.25, 0.3], backgroundColor2=[0.8, 0.85, 0.9])
    d.add("scenes", floorOrientation=1, floorDirection=1, sceneData=0, floorPoint=[0.0, 0.0, 0.0], floorVector=[0.0, 1.0, 0.0])
    d.roots["assembly"] = {
        "lightData": lights,
        "sceneHolder": 0,
        "viewXform": xform((0.1, -0.2, 0.9), turned(0)),
        "viewPoint": [0.1, 0.25, 1.2],
        "viewScale": 1.5,
        "extras": 15,
        "components": reading,
    }
    folder = FOLDER / "desk-lamp"
    d.write(folder / "desk-lamp.json")
    lamp_images(folder)
    (folder / "_rlAnimData.xml").write_text(lamp_motion(joint), encoding="utf-8")


def lamp_images(folder):
    files = {
        "felt.png": png(32, 32, lambda x, y: (20 + noise(x, y), 80 + noise(y, x), 34 + noise(x + 5, y))),
        "brushed.bmp": bmp(32, 32, lambda x, y: (180 + noise(0, y), 140 + noise(0, y), 60 + noise(1, y) // 2)),
        "brand.png": png(32, 32, lambda x, y: (250, 215, 100) if glyph(x, y) else (200, 90, 30)),
        "brand-mask.png": png(32, 32, lambda x, y: (255,) * 3 if glyph(x, y) else (0,) * 3),
        "stars.png": png(
            48, 32, lambda x, y: (255, 0, 255) if (x // 8 + y // 8) % 2 else (0, 255, 0) if abs(x % 8 - 4) + abs(y % 8 - 4) > 4 else (255, 225, 90)
        ),
        "ruler.png": png(40, 16, lambda x, y: (20, 20, 20) if x % 4 == 0 and y > (4 if x % 20 == 0 else 9) else (255, 255, 255)),
    }
    for name, content in files.items():
        (folder / name).write_bytes(content)


def attributes(prefix, values):
    return " ".join(f'{prefix}{i}="{value_text(round(value, 6) + 0.0, 0)}"' for i, value in enumerate(values))


def lamp_motion(joint):
    """The head nods, the shade changes its colour, the bulb comes on, the camera goes round, the sun goes down."""
    lines = ['<?xml version="1.0" encoding="UTF-8"?>', "<MotionStudy>", " <ANIMATION>"]
    lines.append('  <COMPONENT Name="Head-1@desk-lamp/Shade-1@Head">')
    for time, colour in ((0, (0.09, 0.38, 0.41)), (1, (0.5, 0.2, 0.1)), (2, (0.75, 0.16, 0.12))):
        red, green, blue = colour
        lines.append(
            f'   <VisualTransform InterpolateMode="1" Time="{time}" Red="{red}" Green="{green}" Blue="{blue}" '
            f'Transparency="{0.1 * time:g}" NullCompVizprop="0"/>'
        )
    for time, angle in ((0, 28), (1, 18), (2, 28)):
        axes = turned(angle)
        matrix = [c for axis in axes for c in (*axis, 0)] + [*plus(joint, times(axes[1], -0.013)), 1]
        lines.append(f'   <Transform InterpolateMode="1" Time="{time}" {attributes("m", matrix)}/>')
    lines.append("  </COMPONENT>")
    lines.append('  <COMPONENT Name="Head-1@desk-lamp/Bulb-1@Head">')
    for time, state in ((0, 0), (0.5, 1)):
        lines.append(f'   <VisualState InterpolateMode="0" Time="{time}" ComponentVisibility="{state}"/>')
    lines.append("  </COMPONENT>")
    lines.append("  <VIEWPORT>")
    for tag, distance in (("ViewPointTransform", 1.2), ("CameraProperties", 0.9)):
        for time, angle in ((0, 0), (2, 30)):
            c, s = math.cos(math.radians(angle)), math.sin(math.radians(angle))
            view = [c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1]
            place = (distance * s, 0.25, distance * c)
            lines.append(
                f'   <{tag} Time="{time}" InterpolateMode="1" {attributes("pos", place)} {attributes("mv", view)} '
                f'FocalDistance="{distance}" FocalLength="35"/>'
            )
    lines.append("  </VIEWPORT>")
    lines.append("  <LIGHT>")
    head = 'LightProperties Time="{0}" InterpolateMode="1" ID="{1}" LightType="{2}" EnabledInRL="{3}" Red="1" Green="0.9" Blue="{4}"'
    place = attributes("pos", joint)
    for time in (0, 2):
        lines.append(f'   <{head.format(time, 0, 2, 1, 0.63)} {place} {attributes("rot", (0, 0, 0.1 * time))}/>')
    lines.append(f'   <{head.format(0, 1, 3, 1, 0.63)} {place}/>')
    lines.append(f'   <{head.format(0, 2, 4, 0, 1)} {attributes("pos", (0.5, 1, 0.75))} {attributes("rot", (0.3, 0.2, 0))}/>')
    for time, hour, haze in ((0, 12, 2.5), (2, 20.5, 4)):
        lines.append(f'   <{head.format(time, 3, 6, 1, 0.92)} sunTime="{hour}" sunDay="2024173" sunHaze="{haze}"/>')
    lines += ["  </LIGHT>", " </ANIMATION>", "</MotionStudy>", ""]
    return "\n".join(lines)


# ------------------------------------------------------------------------------------------- the bell


def bell_parts(d):
    chrome = d.visual(
        "Chrome", (205, 208, 212),
        d.material("Chrome", specular=1.0, shininess=0.9, rendered=d.rendered(
            (205, 208, 212), index=1, shininess=Single(0.95), unitLevel=Single(0.5), levelA=Single(0.8), weight=Single(1),
            filename="materials\\metal\\chrome.r2m", shaderName="metal",
        )),
    )
    red = d.visual("Red paint", (190, 30, 36), d.material("Red paint", specular=0.6))
    black = d.visual("Black plastic", (28, 28, 30), d.material("Black plastic", specular=0.2))
    thread = d.visual("Thread", (120, 120, 124), d.material("Thread", user="Thread"))
    printed = d.material("Print", ambient=0.5, diffuse=1.0, specular=0.0)
    # Looks forwards and up.
    picture = d.texture("bird.png", 0.026, 0.026, directions=[1, 0, 0, 0, 0.7, -0.7], hasDirections=True)
    bird = d.add(
        "decals", mappingScalar=Single(1), mappingKind=1, textureProperties=picture, decalId=1,
        faceMappings=[{"faceId": 1}], materialProperties=printed, origin=single((-0.013, 0.0168, 0.0292)),
        colorMask=[packed((255, 0, 255))],
    )
    # 0 is the plain bell, 1 the one with a bird.
    part = Part({0: chrome, 1: red}, {1: [bird]})
    arch = [(0.028 * math.sin(math.radians(a)), 0.012 + 0.02 * math.cos(math.radians(a))) for a in (90, 75, 60, 45, 30, 15)]
    part.body(
        [
            (lathe(arch + [(0.0001, 0.032)], 24, smooth=True), 1, None),
            (lathe([(0.026, 0.012), (0.028, 0.012)], 24), 2, {0: chrome, 1: chrome}),
        ],
        level=1,
    )
    part.body(
        [
            (lathe([(0.022, 0.0), (0.022, 0.008)], 20), 3, None), (disc(0.022, 0.008, True, 20), 4, None),
            (disc(0.022, 0.0, False, 20), 5, None),
        ],
        visuals={0: black, 1: black}, level=2,
    )
    lever = box((0.03, 0.004, 0.008), (0.03, 0.005, 0.0))
    part.body([(face, 10 + i, None) for i, face in enumerate(lever)], visuals={0: chrome, 1: chrome}, flag=1, level=3)
    part.body(
        [(lathe([(0.004, 0.031), (0.004, 0.034)], 8), 20, {0: thread, 1: thread}), (disc(0.004, 0.034, True, 8), 21, None)],
        visuals={0: chrome, 1: black}, level=4,
    )
    # Clamps that belong to the plain bell only.
    part.body(
        [(face, 30 + i, None) for i, face in enumerate(box((0.012, 0.016, 0.03), (0.0, -0.008, 0.0)))],
        visuals={0: black, 1: black}, shown={0: 1, 1: 0}, level=5,
    )
    d.tessellation(part)


def bicycle_bell():
    d = Document(12000)
    bell_parts(d)
    d.add(
        "lights", lightType=4, sourceEnabled=1, sourceFactorA=0.2, sourceFactorB=0.9, sourceOptionA=1, lightIndex=0,
        packedColour=packed((255, 255, 255)), sourceVectorB=[0.0, 0.0, 1.0],
    )
    d.add(
        "lights", lightType=6, sourceEnabled=1, sourceFactorB=1.0, sourceHaze=0.1, sourceStamp=stamp(1704067200, "<q"), lightIndex=1,
        packedColour=packed((255, 244, 214)), sourceVectorA=[0.6, 0.5, 0.3], sourceVectorB=[1.0, 0.0, 0.0],
        sourceVectorC=[52.5, 13.4, 0.0],
    )
    d.lists["walls"] = [{"reflectFlag": 1}, {"reflectFlag": 0}]
    d.add(
        "sceneData", shadowFlag=1, backgroundKind=4, backgroundBrightnessValue=0.9, renderingBrightnessValue=1.1,
        reflectivityValue=0.35, backgroundColor1=[0.1, 0.2, 0.4], backgroundColor2=[0.7, 0.8, 0.9],
        backgroundImageKeys=[0], backgroundImages=["plate.png"], backgroundEnvImageKeys=[0, 1],
        backgroundEnvImages=["sky.png", "night.png"], sceneFileName="courtyard.p2s", walls=[0, 0, 1, 1],
    )
    d.add("scenes", floorOrientation=2, floorDirection=1, sceneData=0, floorPoint=[0.0, -0.016, 0.0], floorVector=[0.0, 1.0, 0.0])
    d.roots["part"] = {
        "lightData": [0, 1],
        "sceneHolder": 0,
        "viewXform": xform((0.0, -0.02, 0.1), ((1, 0, 0), (0, 0.8, 0.6), (0, -0.6, 0.8))),
        "viewPoint": [0.0, 0.06, 0.12],
        "viewScale": 8,
        "tessData": 0,
        "activeConfigIndex": 1,
    }
    folder = FOLDER / "bicycle-bell"
    d.write(folder / "bicycle-bell.json")
    (folder / "sky.png").write_bytes(png(32, 16, lambda x, y: (90 + 8 * y, 140 + 6 * y, 235) if y < 9 else (96 + noise(x, y), 90, 70)))
    (folder / "plate.png").write_bytes(png(32, 24, lambda x, y: (60 + 4 * x, 90 + 3 * y, 120)))
    (folder / "bird.png").write_bytes(png(32, 32, bird_pixel))


def bird_pixel(x, y):
    """A body, a wing and a beak; all else is masked."""
    if (x - 15) ** 2 / 90 + (y - 18) ** 2 / 40 < 1:
        return (250, 250, 245) if (x - 13) ** 2 / 30 + (y - 17) ** 2 / 10 > 1 else (40, 60, 120)
    if (x - 23) ** 2 + (y - 10) ** 2 < 18:
        return (250, 250, 245) if (x - 24) ** 2 + (y - 9) ** 2 > 1 else (10, 10, 10)
    return (245, 170, 30) if 26 <= x < 31 and abs(y - 11) <= (31 - x) // 3 else (255, 0, 255)


if __name__ == "__main__":
    desk_lamp()
    bicycle_bell()
