#!/usr/bin/env python3
"""Compares what the viewer says of JPEG 2000 files with what gdalinfo, opj_dump and a plain list of their boxes say.

Files and folders are searched for JPEG 2000 files; with --maker, a program that writes sample files into a folder, its
files are compared too. JP2K_CONFORMANCE_DIR names one more folder. Exit status: 0 all agree, 1 differences, 77 a tool is
missing.

usage: compare_metadata.py VIEWER [--maker PROGRAM] [FILE|FOLDER ...]
"""

import argparse
import math
import os
import re
import subprocess
import sys
import tempfile

import boxlister
import described
import peers

SKIPPED = 77
EXTENSIONS = (".jp2", ".j2k", ".j2c", ".jpc", ".jpx", ".jpf")
CELL_TYPES = {"Byte": "UInt8", "Int8": "Int8", "UInt16": "UInt16", "Int16": "Int16", "UInt32": "UInt32",
              "Int32": "Int32"}
GDAL_METADATA = "<GDALMultiDomainMetadata>"


class Comparison:
    """Collects differences of one file."""

    def __init__(self, ours):
        self.ours = ours
        self.peer = ""
        self.sentences = []

    def same(self, what, ours, theirs):
        if ours != theirs:
            self.sentences.append(f"{what}: {ours!r}, {self.peer} has {theirs!r}")

    def line(self, name):
        """A line of the header page."""
        return self.ours.header.get(name, "<no such line>")


def pair(numbers):
    return "%d x %d" % tuple(numbers)


def joined(numbers):
    return ",".join(map(str, numbers))


def compare_codestream(comparison, peer):
    """What the box list and opj_dump both tell of the main header."""
    check, line = comparison.same, comparison.line
    check("tiles", line("Tiles Dimensions (X,Y)"), pair(peer.tiles))
    check("tile size", (line("Tile Width"), line("Tile Height")), tuple(map(str, peer.tile_size)))
    check("precinct widths", line("Precinct Sizes on X axis"), joined(w for w, _ in peer.precincts))
    check("precinct heights", line("Precinct Sizes on Y axis"), joined(h for _, h in peer.precincts))
    check("code-blocks", line("Code Block Dimensions (X,Y)"), pair(peer.code_block))
    check("bit depths", line("Band Bit Depths"), joined(peer.depths))
    check("resolution levels", line("Resolution Levels"), str(peer.levels))
    check("quality layers", line("Quality Layers"), str(peer.layers))
    check("progression", line("Progression Order"), peer.progression)
    check("filter", line("Filter"), peer.filter)
    check("SOP", line("SOP Markers"), str(peer.sop).lower())
    check("EPH", line("EPH Markers"), str(peer.eph).lower())


def cell_type(depths, signed):
    """The smallest type that takes all bands."""
    bits = max(depth + (any(signed) and not is_signed) for depth, is_signed in zip(depths, signed))
    size = next(size for size in (8, 16, 32, 64) if bits <= size)
    return ("Int" if any(signed) else "UInt") + str(size)


def colour_space(listing):
    """Of the enumerated spaces that need no look at the cells; None where it takes more than that."""
    colours = listing.header.components - listing.opacity_channels()
    rgb = "RGB" if colours >= 3 else None
    grey = "Greyscale" if colours == 1 else "Multiband"  # grey and other bands beside it
    return {16: rgb, 17: grey, 18: rgb}.get(listing.colour_space())


def compare_boxes(comparison, listing):
    comparison.peer = "the box list"
    check, line, header = comparison.same, comparison.line, listing.header
    header.tile_size = (header.tile_width, header.tile_height)
    compare_codestream(comparison, header)
    check("size", (comparison.ours["width"], comparison.ours["height"]), header.size())
    check("profile", line("Profile"), str({1: 0, 2: 1}.get(header.rsiz, 2)))
    check("comments", line("Comments"), "\n".join(header.comments))
    check("GML", line("GML in JP2"), str(listing.has_gml).lower())
    check("XML boxes", xml_boxes(comparison.ours), [text_of(box) for box in listing.xml_boxes])
    if not listing.has_palette:
        check("bands", comparison.ours["numberOfBands"], header.components)
        check("cell type", comparison.ours["cellType"], cell_type(header.depths, header.signed))
    if colour_space(listing):
        check("colour space", comparison.ours["colorSpace"], colour_space(listing))


def compare_opj(comparison, dump, listing):
    comparison.peer = "opj_dump"
    if dump is None:
        comparison.sentences.append("opj_dump does not open the file")
        return
    compare_codestream(comparison, dump)
    header = listing.header
    comparison.same("canvas", (header.x0, header.y0, header.x1, header.y1), dump.canvas)


def compare_gdal(comparison, info, listing):
    comparison.peer = "gdalinfo"
    ours, check = comparison.ours, comparison.same
    check("size", (ours["width"], ours["height"]), info.size)
    check("geo-transform", *rounded(ours.geo_transform(), info.geo_transform or [0, 1, 0, 0, 0, -1]))
    check("EPSG", ours.epsg(), info.epsg)
    # GDAL lists those outside of superboxes only, and not those that hold its own metadata.
    nested = [text_of(content) for content in listing.nested_xml_boxes]
    listed = [text for text in xml_boxes(ours) if text not in nested and not text.startswith(GDAL_METADATA)]
    check("XML boxes", listed, [plain(text) for text in info.xml_boxes])
    if "Palette" in info.colours:  # shown as its colours by the viewer, as its indices by GDAL
        return
    check("bands", ours["numberOfBands"], len(info.types))
    if not (info.types[0] == "Byte" and listing.header.signed[0]):  # GDAL before 3.7 has no signed bytes
        check("cell type", ours["cellType"], CELL_TYPES.get(info.types[0], info.types[0]))
    if set(info.colours[:3]) == {"Red", "Green", "Blue"}:
        check("colour space", ours["colorSpace"], "RGB")
    elif info.colours[0] == "Gray" and len(info.colours) == 1:
        check("colour space", ours["colorSpace"], "Greyscale")
    check("opacity", ours["hasOpacity"], "Alpha" in info.colours)


def rounded(ours, theirs):
    """Both to a millionth of a cell, so that sums in another order count as equal."""
    digits = 6 - math.floor(math.log10(abs(theirs[1]) or 1.0))
    return tuple([round(float(number), digits) + 0.0 for number in numbers] for numbers in (ours, theirs))


def xml_boxes(ours):
    """Texts of the XML boxes as the page of the boxes has them, one for each entry of its combo box."""
    page = ours.values["pages"].get("Metadata", "")
    parts = re.split(r"^comboBoxMetaBox: 'xml ' Box #\d+:\nplainTextEditMetaData: ", page, flags=re.MULTILINE)
    return [plain(text) for text in parts[1:]]


def text_of(content):
    """A box's bytes as the page shows them: UTF-8 without terminators, any line ends."""
    return plain(content.decode("utf-8", "replace"))


def plain(text):
    return text.split("\0")[0].replace("\r\n", "\n").replace("\r", "\n").strip()


def compare(path, ours):
    """Sentences on how the viewer's description of a file differs from the others'."""
    if isinstance(ours, str):
        return [f"not opened: {ours}"]
    comparison = Comparison(ours)
    listing = boxlister.Listing(path)
    compare_boxes(comparison, listing)
    compare_opj(comparison, peers.opj_dump(path), listing)
    info = peers.gdal_info(path)
    if info:
        compare_gdal(comparison, info, listing)
    return comparison.sentences


def files_below(names):
    for name in names:
        if os.path.isfile(name):
            yield name
        for folder, folders, files in os.walk(name):
            folders.sort()
            yield from (os.path.join(folder, file) for file in sorted(files) if file.lower().endswith(EXTENSIONS))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("viewer")
    parser.add_argument("--maker", help="program that writes sample files into the folder it is given")
    parser.add_argument("paths", nargs="*", metavar="FILE|FOLDER")
    arguments = parser.parse_args()
    missing = peers.missing_tools()
    if missing:
        print("skipped:", " and ".join(missing), "not installed")
        return SKIPPED
    bad = 0
    with tempfile.TemporaryDirectory() as folder:
        paths = arguments.paths + [folder] + [os.environ[name] for name in ("JP2K_CONFORMANCE_DIR",) if name in os.environ]
        if arguments.maker:
            subprocess.run([arguments.maker, folder], check=True)
        files = list(files_below(paths))
        descriptions = described.describe(arguments.viewer, files)
        for path in files:
            sentences = compare(path, descriptions[path])
            bad += len(sentences)
            for sentence in sentences:
                print(f"{os.path.basename(path)}: {sentence}")
    print(f"{len(files)} files, {bad} differences")
    return 0 if files and not bad else 1


if __name__ == "__main__":
    sys.exit(main())
