#!/usr/bin/env python3
"""Checks that rational polynomial coefficients written by a foreign writer are read back right.

GDAL writes them into a GeoJP2 box, an .RPB file and a _RPC.TXT file; what the viewer says is compared with what the writer
was given. Exit status: 0 all agree, 1 differences, 77 a tool is missing.

usage: compare_rpc.py VIEWER
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile

import described

SKIPPED = 77

# Key of the writer, name on the page, value: as RPC00B has them (STDI-0002 volume 1, appendix E).
NUMBERS = [
    ("ERR_BIAS", "Error Bias", 0.25),
    ("ERR_RAND", "Error Random", 0.125),
    ("LINE_OFF", "Line Offset", 5000.5),
    ("LINE_SCALE", "Line Scale", 5001.0),
    ("LAT_OFF", "Latitude Offset", 48.125),
    ("LAT_SCALE", "Latitude Scale", 0.0625),
    ("LONG_OFF", "Longitude Offset", -11.75),
    ("LONG_SCALE", "Longitude Scale", 0.0875),
    ("HEIGHT_OFF", "Height Offset", 600.0),
    ("HEIGHT_SCALE", "Height Scale", 501.0),
    ("SAMP_OFF", "Sample Offset", 4000.25),
    ("SAMP_SCALE", "Sample Scale", 4001.0),
]
POLYNOMIALS = [
    ("LINE_NUM_COEFF", "Line Numerator Coefficients", 0.001),
    ("LINE_DEN_COEFF", "Line Denominator Coefficients", 0.002),
    ("SAMP_NUM_COEFF", "Sample Numerator Coefficients", -0.003),
    ("SAMP_DEN_COEFF", "Sample Denominator Coefficients", 0.004),
]
# Where the writer puts them, and the options for the TIFF file on the way; none: into the image itself.
WRITERS = {"box": None, "rpb": ["-co", "RPB=YES"], "txt": ["-co", "RPCTXT=YES"]}


def coefficients(step):
    return [step * i for i in range(1, 21)]


def write_source(folder):
    """An image without cells but with coefficients."""
    items = [(key, f"{value!r}") for key, _, value in NUMBERS]
    items += [(key, " ".join(f"{number:.12e}" for number in coefficients(step))) for key, _, step in POLYNOMIALS]
    lines = "".join(f'<MDI key="{key}">{text}</MDI>' for key, text in items)
    path = os.path.join(folder, "source.vrt")
    with open(path, "w", encoding="ascii") as file:
        file.write(f'<VRTDataset rasterXSize="64" rasterYSize="48"><Metadata domain="RPC">{lines}</Metadata>'
                   '<VRTRasterBand dataType="Byte" band="1"/></VRTDataset>')
    return path


def translate(source, target, *options):
    subprocess.run(["gdal_translate", "-q", *options, source, target], check=True, capture_output=True)


def make_file(folder, source, name, options):
    image = os.path.join(folder, name + ".jp2")
    if options is None:
        translate(source, image, "-of", "JP2OpenJPEG")
    else:
        tiff = os.path.join(folder, name + ".tif")
        translate(source, tiff, "-of", "GTiff", "-co", "PROFILE=BASELINE", *options)  # side files only
        translate(source, image, "-of", "JP2OpenJPEG", "-co", "GeoJP2=NO", "-co", "GMLJP2=NO")
    if os.path.exists(image + ".aux.xml"):  # GDAL's own side file, which nobody else reads
        os.remove(image + ".aux.xml")
    return image


def expected_text():
    """The page's clipboard text without blanks at the ends of lines."""
    lines = [f"{name} = {value:.6f}" for _, name, value in NUMBERS]
    for _, name, step in POLYNOMIALS:
        lines += [f"{name}:", ", ".join(f"{number:.6f}" for number in coefficients(step))]
    return lines


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("viewer")
    arguments = parser.parse_args()
    if not shutil.which("gdal_translate"):
        print("skipped: gdal_translate is not installed")
        return SKIPPED
    bad = 0
    with tempfile.TemporaryDirectory() as folder:
        source = write_source(folder)
        files = {name: make_file(folder, source, name, options) for name, options in WRITERS.items()}
        descriptions = described.describe(arguments.viewer, files.values())
        for name, image in files.items():
            ours = descriptions[image]
            text = ours if isinstance(ours, str) else ours["pages"].get("RPC Info", "")
            lines = [line.strip() for line in text.replace("\r", "\n").split("\n") if line.strip()]
            if lines != expected_text():
                bad += 1
                print(f"{name}: {lines}")
    print(f"{len(files)} files, {bad} differences")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
