#!/usr/bin/env python3
"""Checks that a geo-reference written by a foreign writer is read back right.

Makes small JPEG 2000 files with gdal_translate, in several reference systems and ways to store them, and compares what
the viewer says of them with what the writer was asked for. Exit status: 0 all agree, 1 differences, 77 a tool is missing.

usage: compare_georeference.py VIEWER
"""

import argparse
import itertools
import os
import shutil
import subprocess
import sys
import tempfile

import described

SKIPPED = 77
WIDTH, HEIGHT = 64, 48

# EPSG code: west, north, cell size. The axis orders that the register gives differ: easting first, northing first
# (3035), latitude first (4326), and both axes to the north (3031).
PLACES = {
    4326: (11.25, 48.5, 0.0125),
    3857: (1250000.0, 6180000.0, 20.0),
    32633: (399960.0, 5300040.0, 10.0),
    2154: (652000.0, 6862000.0, 5.0),
    3035: (4321000.0, 3210000.0, 100.0),
    27700: (530000.0, 180000.0, 25.0),
    3031: (-1500000.0, 900000.0, 500.0),
}

# Creation options, and whether the file itself tells the place.
WRITERS = {
    "geojp2": ["GeoJP2=YES", "GMLJP2=NO"],
    "gml1": ["GeoJP2=NO", "GMLJP2=YES"],
    "gml2": ["GeoJP2=NO", "GMLJP2=NO", "GMLJP2V2_DEF=YES"],
    "geojp2+gml1": ["GeoJP2=YES", "GMLJP2=YES"],
    "geojp2+gml2": ["GeoJP2=YES", "GMLJP2=NO", "GMLJP2V2_DEF=YES"],
    "behind the codestream": ["GeoJP2=YES", "GMLJP2=YES", "GEOBOXES_AFTER_JP2C=YES"],
    "world file": ["GeoJP2=NO", "GMLJP2=NO"],
}


def run(*command):
    subprocess.run(command, check=True, capture_output=True, text=True)


def corners(place):
    west, north, cell = place
    return west, north, west + WIDTH * cell, north - HEIGHT * cell


def write_world_file(path, place):
    """A world file speaks of the centre of the top-left cell."""
    west, north, cell = place
    numbers = [cell, 0.0, 0.0, -cell, west + cell / 2, north - cell / 2]
    with open(path, "w", encoding="ascii") as file:
        file.write("".join(f"{number!r}\n" for number in numbers))


def make_source(folder, epsg):
    """A GeoTIFF file, from which the writers make theirs."""
    tiff = os.path.join(folder, f"{epsg}.tif")
    run("gdal_create", "-of", "GTiff", "-outsize", str(WIDTH), str(HEIGHT), "-bands", "1", "-ot", "Byte", "-burn", "90",
        "-a_srs", f"EPSG:{epsg}", "-a_ullr", *map(repr, corners(PLACES[epsg])), tiff)


def make_file(folder, epsg, writer, kind):
    """Returns the file's name, its place and the code that it has to be read with."""
    place = PLACES[epsg]
    stem = os.path.join(folder, f"{epsg}_{writer}_{kind}".replace(" ", "_"))
    image = stem + ".jp2"
    options = [part for option in WRITERS[writer] for part in ("-co", option)]
    run("gdal_translate", "-q", "-of", "JP2OpenJPEG", "-mo", f"AREA_OR_POINT={kind}", *options,
        os.path.join(folder, f"{epsg}.tif"), image)
    if os.path.exists(image + ".aux.xml"):  # GDAL's own side file, which nobody else reads
        os.remove(image + ".aux.xml")
    if writer == "world file":
        write_world_file(stem + ".j2w", place)
    return image, place, 0 if writer == "world file" else epsg


def differences(description, place, epsg):
    """Sentences; none when the description is right."""
    if isinstance(description, str):
        return [description]
    west, north, cell = place
    expected = [west, cell, 0.0, north, 0.0, -cell]
    found = description.geo_transform()
    tolerance = 1e-6 * cell
    result = []
    if any(abs(a - b) > tolerance for a, b in zip(found, expected)):
        result.append(f"placed at {found}, expected {expected}")
    if description.epsg() != epsg:
        result.append(f"has EPSG {description.epsg()}, expected {epsg}")
    if description["rotation"] != 0:
        result.append(f"is turned by {description['rotation']} degrees")
    return result


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("viewer")
    arguments = parser.parse_args()
    if not all(shutil.which(tool) for tool in ("gdal_create", "gdal_translate")):
        print("skipped: gdal_create and gdal_translate are not installed")
        return SKIPPED
    bad = 0
    with tempfile.TemporaryDirectory() as folder:
        for epsg in PLACES:
            make_source(folder, epsg)
        files = [make_file(folder, *case) for case in itertools.product(PLACES, WRITERS, ("Area", "Point"))]
        descriptions = described.describe(arguments.viewer, [image for image, _, _ in files])
        for image, place, epsg in files:
            for sentence in differences(descriptions[image], place, epsg):
                bad += 1
                print(f"{os.path.basename(image)}: {sentence}")
    print(f"{len(files)} files, {bad} differences")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
