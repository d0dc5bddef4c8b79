"""Lists the boxes and the main header of a JPEG 2000 file by hand, from ISO/IEC 15444-1 annexes A and I alone.

Meant for good files: it is what the viewer's own, defensive reading is compared with.
"""

import struct

SUPER_BOXES = {b"jp2h", b"asoc", b"uinf", b"jpch", b"jplh", b"cgrp", b"drep", b"comp", b"grp ", b"jclx"}
PROGRESSIONS = ["LRCP", "RLCP", "RPCL", "PCRL", "CPRL"]
FILTERS = ["9x7 (Irreversible)", "5x3 (Reversible)"]

SIZ, COD, COC, COM, SOT = 0xFF51, 0xFF52, 0xFF53, 0xFF64, 0xFF90


class Box:
    def __init__(self, kind, content, depth):
        self.kind = kind  # four bytes
        self.content = content
        self.depth = depth


def boxes(data, depth=0):
    """All boxes in file order, superboxes in front of what they hold (I.4)."""
    at = 0
    while at + 8 <= len(data):
        length, kind = struct.unpack_from(">I4s", data, at)
        header = 8
        if length == 1:
            length, header = struct.unpack_from(">Q", data, at + 8)[0], 16
        elif length == 0:
            length = len(data) - at
        if length < header:
            return
        content = data[at + header:at + length]
        yield Box(kind, content, depth)
        if kind in SUPER_BOXES:
            yield from boxes(content, depth + 1)
        at += length


def ceil_div(a, b):
    return -(-a // b)


def segments(codestream):
    """Marker and payload of every segment of the main header (A.2)."""
    at = 2
    while at + 4 <= len(codestream):
        marker, length = struct.unpack_from(">HH", codestream, at)
        if marker == SOT:
            return
        yield marker, codestream[at + 4:at + 2 + length]
        at += 2 + length


class Header:
    """What SIZ, COD, COC of component 0 and COM say (A.5.1, A.6.1, A.6.2, A.9.2)."""

    def __init__(self, codestream):
        self.comments = []
        own_style = False
        for marker, payload in segments(codestream):
            if marker == SIZ:
                self.read_size(payload)
            elif marker == COD:
                style, order, layers = struct.unpack_from(">BBH", payload)
                self.sop, self.eph = bool(style & 2), bool(style & 4)
                self.progression, self.layers = PROGRESSIONS[order], layers
                if not own_style:
                    self.read_style(style, payload[5:])
            elif marker == COC and self.component_of(payload) == 0:
                own_style = True
                rest = payload[1 if self.components < 257 else 2:]
                self.read_style(rest[0], rest[1:])
            elif marker == COM and struct.unpack_from(">H", payload)[0] == 1:
                self.comments.append(payload[2:].decode("latin-1"))

    def component_of(self, payload):
        return payload[0] if self.components < 257 else struct.unpack_from(">H", payload)[0]

    def read_size(self, payload):
        (self.rsiz, self.x1, self.y1, self.x0, self.y0, self.tile_width, self.tile_height, tile_x0, tile_y0,
         self.components) = struct.unpack_from(">HIIIIIIIIH", payload)
        parts = [struct.unpack_from("BBB", payload, 36 + 3 * i) for i in range(self.components)]
        self.depths = [(ssiz & 0x7F) + 1 for ssiz, _, _ in parts]
        self.signed = [bool(ssiz & 0x80) for ssiz, _, _ in parts]
        self.steps = [(x, y) for _, x, y in parts]
        self.tiles = (ceil_div(self.x1 - tile_x0, self.tile_width), ceil_div(self.y1 - tile_y0, self.tile_height))

    def read_style(self, style, payload):
        self.levels = payload[0] + 1
        self.code_block = (1 << (payload[1] + 2), 1 << (payload[2] + 2))
        self.filter = FILTERS[payload[4]]
        sizes = payload[5:5 + self.levels] if style & 1 else bytes([0xFF]) * self.levels
        self.precincts = [(1 << (size & 15), 1 << (size >> 4)) for size in sizes]

    def size(self):
        """Width and height in cells of the finest component."""
        step_x, step_y = min(x for x, _ in self.steps), min(y for _, y in self.steps)
        return (ceil_div(self.x1, step_x) - ceil_div(self.x0, step_x),
                ceil_div(self.y1, step_y) - ceil_div(self.y0, step_y))


class Listing:
    """A file as its bytes have it."""

    def __init__(self, path):
        with open(path, "rb") as file:
            data = file.read()
        self.is_bare = data[:4] == b"\xff\x4f\xff\x51"
        self.boxes = [] if self.is_bare else list(boxes(data))
        self.header = Header(data if self.is_bare else self.contents(b"jp2c")[0])
        self.xml_boxes = self.contents(b"xml ")
        self.nested_xml_boxes = [box.content for box in self.boxes if box.kind == b"xml " and box.depth > 0]
        self.has_gml = any(label.rstrip(b"\0") == b"gml.data" for label in self.contents(b"lbl "))
        self.has_palette = bool(self.contents(b"pclr"))

    def contents(self, kind):
        return [box.content for box in self.boxes if box.kind == kind]

    def colour_space(self):
        """Of the enumerated space with the highest precedence (I.5.3.3), None where another method is used."""
        found = [content for content in self.contents(b"colr") if content[0] == 1]
        if not found or len(found) != len(self.contents(b"colr")):
            return None
        best = max(found, key=lambda content: struct.unpack_from("b", content, 1)[0])
        return struct.unpack_from(">I", best, 3)[0]

    def opacity_channels(self):
        """Channels of types 1 and 2 in the channel definition box (I.5.3.6)."""
        definitions = b"".join(content[2:] for content in self.contents(b"cdef"))
        return sum(kind in (1, 2) for _, kind, _ in struct.iter_unpack(">HHH", definitions))
