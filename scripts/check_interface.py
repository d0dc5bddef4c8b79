#!/usr/bin/env python3
"""Holds the table of docs/interface.md to what the plug-in's module needs of the two libraries.

usage: scripts/check_interface.py MODULE [--table]

A row is "| `class` | operations |"; functions of no class stand below the name of the file that declares them. Constructors,
destructors and what Qt's tools make are left out. --table prints the rows that MODULE asks for.
"""
import collections
import pathlib
import re
import subprocess
import sys

PAGE = pathlib.Path(__file__).resolve().parent.parent / "docs" / "interface.md"
ROW = re.compile(r"\| `([\w:./]+)` \| (.+) \|")
SYMBOL = re.compile(r"\s*U ((?:PLK|Korvane)[\w:~]*)")
FREE_FUNCTIONS = "xrv60/plkinit.h"


def needed(module):
    """{class: operations} that the module leaves to the libraries."""
    listing = subprocess.run(["nm", "-DC", "--undefined-only", module], check=True, capture_output=True, text=True).stdout
    found = collections.defaultdict(set)
    for line in listing.splitlines():
        if not (symbol := SYMBOL.match(line)):
            continue
        place, _, name = symbol[1].rpartition("::")
        if not name.startswith(("~", "qt_", "staticMetaObject")) and name != place.rpartition("::")[2]:
            found[place or FREE_FUNCTIONS].add(name)
    return found


def listed():
    rows = (ROW.fullmatch(line) for line in PAGE.read_text(encoding="utf-8").splitlines())
    return {row[1]: set(re.findall(r"\w+", row[2])) for row in rows if row}


def main():
    needs, has = needed(sys.argv[1]), listed()
    if "--table" in sys.argv:
        for place in sorted(needs):
            print(f"| `{place}` | {', '.join(sorted(needs[place]))} |")
        return 0
    faults = []
    for place in sorted(needs.keys() | has.keys()):
        faults += [f"{place}: {name} is missing" for name in sorted(needs.get(place, set()) - has.get(place, set()))]
        faults += [f"{place}: {name} is needed no more" for name in sorted(has.get(place, set()) - needs.get(place, set()))]
    for fault in faults:
        print(f"{PAGE.name}: {fault}", file=sys.stderr)
    if not needs:
        print("The module needs nothing: is it the plug-in?", file=sys.stderr)
    return 1 if faults or not needs else 0


if __name__ == "__main__":
    sys.exit(main())
