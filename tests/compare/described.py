"""What the viewer says of a file: `qdviewer --describe` and the texts of the information pages in it."""

import json
import os
import subprocess
import tempfile


class Description:
    """One object of `qdviewer --describe`."""

    def __init__(self, values):
        self.values = values
        self.header = page_lines(values.get("pages", {}).get("JP2 Info", ""))

    def __getitem__(self, key):
        return self.values[key]

    def geo_transform(self):
        """Corner transform in GDAL's order, for images that are not turned."""
        bounds = self.values["bounds"]
        return [bounds["x1"], self.values["cellSizeX"], 0.0, bounds["y1"], 0.0, self.values["cellSizeY"]]

    def epsg(self):
        name = self.values["coordSysName"]
        return int(name[len("epsg:"):]) if name.startswith("epsg:") else 0


def page_lines(text):
    """The lines "Name = value" of a page's clipboard text, which end with carriage returns."""
    pairs = (line.split(" = ", 1) for line in text.split("\r") if " = " in line)
    return {name: value for name, value in pairs}


def run_viewer(viewer, files):
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8")
    with tempfile.TemporaryDirectory() as folder:
        settings = os.path.join(folder, "settings.ini")
        return subprocess.run([viewer, "--settings", settings, "--describe", *files], env=environment,
                              capture_output=True, text=True, timeout=250, check=False)


def describe(viewer, files):
    """A Description, or the viewer's complaint as a text, for every one of `files`."""
    files = list(files)
    done = run_viewer(viewer, files)
    results = dict.fromkeys(files, done.stderr.strip() or f"the viewer ended with status {done.returncode}")
    for line in done.stdout.splitlines():
        if line.startswith("{"):
            values = json.loads(line)
            results[values["source"]] = values.get("error") or Description(values)
    return results
