#!/usr/bin/env python3
"""Holds the sources to the tables of rooms in ARCHITECTURE.md.

usage: scripts/check_rooms.py [--graph]

A table stands below a line "<!-- rooms: FOLDER [INCLUDE_ROOT...] -->" and has a row for each room, bottom to top:
"| `room` | rooms that it includes | what happens there |". A room is a folder below FOLDER with the files that lie directly
in it. It may include only rooms above its own row, so there can be no cycle. What fails: an include that the row does not
name, a name that no include needs any more, a folder with sources but no row, a row without sources. Quoted and angled
includes are looked up beside the file, then below the include roots, then below FOLDER.

--graph writes who includes whom, with the number of includes.
"""
import collections
import pathlib
import re
import sys

PROJECT = pathlib.Path(__file__).resolve().parent.parent
HEADING = re.compile(r"<!-- rooms: (.+) -->")
ROW = re.compile(r"\| `([^`]+)` \| ([^|]*) \|")
INCLUDE = re.compile(r'\s*#\s*include\s*["<]([^">]+)[">]')
SOURCES = (".h", ".cpp")


def tables(page):
    """(folder, include roots, [(room, [rooms it includes])]) of each table, in the order of the page."""
    found, current = [], None
    for line in page.read_text(encoding="utf-8").splitlines():
        if heading := HEADING.match(line):
            folder, *roots = [PROJECT / name for name in heading[1].split()]
            current = (folder, roots + [folder], [])
            found.append(current)
        elif current and (row := ROW.match(line)):
            current[2].append((row[1], re.findall(r"`([^`]+)`", row[2])))
        elif current and current[2]:
            current = None
    return found


def files_by_room(folder, rows):
    """Of the folders of the top level that the rows name: others may hold whole builds."""
    rooms = collections.defaultdict(list)
    for top in sorted({name.split("/")[0] for name, _ in rows}):
        for path in sorted((folder / top).rglob("*")):
            if path.suffix in SOURCES:
                rooms[path.parent.relative_to(folder).as_posix()].append(path)
    return rooms


def included_rooms(path, folder, roots):
    """(room, text of the include) of each include in the file that leads to a room of the table."""
    for line in path.read_text(encoding="utf-8").splitlines():
        if include := INCLUDE.match(line):
            for root in (path.parent, *roots):
                target = root / include[1]
                if target.is_file():
                    if folder in target.resolve().parents:
                        yield target.resolve().parent.relative_to(folder).as_posix(), include[1]
                    break


def check_table(folder, roots, rows, graph):
    """Sentences about what does not hold."""
    faults = []
    rooms = files_by_room(folder, rows)
    above = []
    outside = [room for room in rooms if room not in [name for name, _ in rows]]
    faults += [f"{folder.relative_to(PROJECT)}: the folder {room} has no row." for room in outside if is_inside(room, rows)]
    for room, allowed in rows:
        counts = collections.Counter()
        for path in rooms.get(room, []):
            for other, text in included_rooms(path, folder, roots):
                if other == room:
                    continue
                counts[other] += 1
                if other not in allowed:
                    faults.append(f'{path.relative_to(PROJECT)} includes "{text}", but {room} may not include {other}.')
        faults += [f"{folder.relative_to(PROJECT)}: {room} names {name}, which does not stand above it." for name in allowed if name not in above]
        faults += [f"{folder.relative_to(PROJECT)}: nothing in {room} includes {name} any more." for name in allowed if name not in counts]
        if room not in rooms:
            faults.append(f"{folder.relative_to(PROJECT)}: there are no sources in {room}.")
        if graph:
            print(f"{folder.relative_to(PROJECT)}/{room}:", ", ".join(f"{name} {n}" for name, n in sorted(counts.items())) or "-")
        above.append(room)
    return faults


def is_inside(room, rows):
    """Tables may leave out whole folders of the top level, but nothing below a folder that they name, nor beside a room
    that lies below the top level."""
    named = {name.rpartition("/")[0] or name for name, _ in rows}
    return any(f"{room}/".startswith(f"{name}/") for name in named)


def main():
    graph = "--graph" in sys.argv[1:]
    found = tables(PROJECT / "ARCHITECTURE.md")
    if not found or not all(rows for _, _, rows in found):
        sys.exit("ARCHITECTURE.md has no tables of rooms, or empty ones.")
    faults = [fault for table in found for fault in check_table(*table, graph)]
    for fault in faults:
        print(fault, file=sys.stderr)
    rooms = sum(len(rows) for _, _, rows in found)
    print(f"{rooms} rooms in {len(found)} tables, {len(faults)} faults.")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
