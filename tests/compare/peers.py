"""What gdalinfo and opj_dump say of a file."""

import json
import re
import shutil
import subprocess

TOOLS = ("gdalinfo", "opj_dump")


def missing_tools():
    return [tool for tool in TOOLS if not shutil.which(tool)]


def output_of(*command):
    """Bytes on standard output; none when the tool refuses the file."""
    done = subprocess.run(command, capture_output=True, timeout=300, check=False)
    return done.stdout if done.returncode == 0 else b""


class GdalInfo:
    """`gdalinfo -json`."""

    def __init__(self, values):
        metadata = values.get("metadata", {})
        self.size = tuple(values["size"])
        self.types = [band["type"] for band in values["bands"]]
        self.colours = [band["colorInterpretation"] for band in values["bands"]]
        self.geo_transform = values.get("geoTransform")
        self.epsg = self.code_of(values.get("coordinateSystem", {}).get("wkt", ""))
        self.xml_boxes = [metadata[key] for key in sorted(metadata, key=self.number_of) if key.startswith("xml:BOX_")]

    @staticmethod
    def code_of(wkt):
        found = re.search(r'ID\["EPSG",(\d+)\]\]$', wkt.strip())
        return int(found.group(1)) if found else 0

    @staticmethod
    def number_of(domain):
        digits = domain.rpartition("_")[2]
        return int(digits) if digits.isdigit() else -1


def gdal_info(path):
    """None when GDAL does not open the file."""
    text = output_of("gdalinfo", "-json", "-mdd", "all", path)
    if not text:
        return None
    # The XML boxes stand in the text as they are, whatever their encoding.
    return GdalInfo(json.loads(text.decode("utf-8", "replace"), strict=False))


class OpjDump:
    """The texts of `opj_dump`; figures of component 0 where components differ."""

    PROGRESSIONS = ["LRCP", "RLCP", "RPCL", "PCRL", "CPRL"]
    FILTERS = ["9x7 (Irreversible)", "5x3 (Reversible)"]

    def __init__(self, text):
        def number(name, base=10):
            return int(re.search(rf"\b{name}=(?:2\^)?(\w+)", text).group(1), base)

        self.canvas = tuple(number(name) for name in ("x0", "y0", "x1", "y1"))
        self.depths = [int(value) for value in re.findall(r"\bprec=(\d+)", text)]
        self.signed = [value != "0" for value in re.findall(r"\bsgnd=(\d+)", text)]
        self.tiles = (number("tw"), number("th"))
        self.tile_size = (number("tdx"), number("tdy"))
        style = number("csty", 16)
        self.sop, self.eph = bool(style & 2), bool(style & 4)
        self.progression = self.PROGRESSIONS[number("prg", 16)]
        self.layers = number("numlayers")
        self.levels = number("numresolutions")
        self.code_block = (1 << number("cblkw"), 1 << number("cblkh"))
        self.filter = self.FILTERS[number("qmfbid")]
        first = re.search(r"preccintsize \(w,h\)=(.*)", text).group(1)
        self.precincts = [(1 << int(w), 1 << int(h)) for w, h in re.findall(r"\((\d+),(\d+)\)", first)]


def opj_dump(path):
    """None when opj_dump does not open the file."""
    text = output_of("opj_dump", "-i", path).decode("utf-8", "replace")
    return OpjDump(text) if "Codestream info" in text else None
