#!/usr/bin/env python3
"""Breaks the product on purpose, one place at a time, and tells whether the tests notice.

usage: scripts/breaks/try_breaks.py [options] [NAME ...]

Without names all breaks of breaks.txt are tried, which takes one to three minutes each. For every one: the text is
changed, everything is built, the tests are run until one fails (those that know the room first), and the text is put back.
A failure counts when the test fails again by itself: under load, tests that measure time fail without any break. So does a
run that takes longer than its limit. Tests that fail without a break are found first and left out.

The build directory has to be configured. Files to be changed must be free of uncommitted changes, and are put back also
when the script is stopped. Exit status 1: a break was not noticed or could not be tried.
"""

import argparse
import contextlib
import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
LIST = Path(__file__).with_name("breaks.txt")
SOURCES = ["*.cpp", "*.h", "*.ui", ":!tests", ":!bench"]
FIELDS = ("room", "first", "only", "loses", "old", "new")
OPTIONAL = ("first", "only")


class Break:
    """One entry of the list, and where its text was found."""

    def __init__(self, name):
        self.name = name
        self.fields = {}
        self.file = None
        self.span = None

    def locate(self, texts):
        """Sets file and span; returns what is wrong, or nothing. texts: the sources by path."""
        tokens = re.findall(r"\w+|[^\w\s]", self.fields["old"])
        pattern = re.escape(tokens[0])
        for before, token in zip(tokens, tokens[1:]):
            is_split = before[-1].isalnum() and token[0].isalnum()
            pattern += (r"\s+" if is_split else r"\s*") + re.escape(token)
        pattern = (r"\b" if tokens[0][0].isalnum() else "") + pattern
        places = [(path, match.span()) for path, text in texts.items() for match in re.finditer(pattern, text)]
        if len(places) != 1:
            return f"{self.name}: its old text occurs {len(places)} times in the product, not once"
        self.file, self.span = places[0]
        return None

    @contextlib.contextmanager
    def applied(self):
        original = self.file.read_bytes()
        text = original.decode()
        begin, end = self.span
        try:
            self.file.write_text(text[:begin] + self.fields["new"] + text[end:])
            yield
        finally:
            # The new time stamp has the next build compile it again.
            self.file.write_bytes(original)


def read_list():
    breaks, field = [], None
    for number, line in enumerate(LIST.read_text().splitlines(), 1):
        head = re.fullmatch(r"\[([\w-]+)\]", line)
        start = re.match(r"(\w+):\s*", line)
        if head:
            breaks.append(Break(head[1]))
            field = None
        elif start and start[1] in FIELDS:
            field = start[1]
            breaks[-1].fields[field] = line[start.end():]
        elif line.startswith(" ") and field:
            breaks[-1].fields[field] += "\n" + line.strip()
        elif line and not line.startswith("#"):
            sys.exit(f"{LIST.name}:{number}: what is this?")
    for entry in breaks:
        missing = [name for name in FIELDS if name not in entry.fields and name not in OPTIONAL]
        if missing:
            sys.exit(f"{entry.name}: no {missing[0]}")
    return breaks


def choose(breaks, names):
    unknown = set(names) - {entry.name for entry in breaks}
    if unknown:
        sys.exit("There is no break of the name " + ", ".join(sorted(unknown)) + ".")
    return [entry for entry in breaks if not names or entry.name in names]


def git(*arguments):
    return subprocess.run(["git", *arguments], cwd=ROOT, check=True, capture_output=True, text=True).stdout


def locate(breaks):
    texts = {ROOT / name: (ROOT / name).read_text() for name in git("ls-files", *SOURCES).splitlines()
             if (ROOT / name).exists()}
    faults = list(filter(None, [entry.locate(texts) for entry in breaks]))
    if faults:
        sys.exit("\n".join(faults))
    changed = git("status", "--porcelain", "--", *{str(entry.file) for entry in breaks})
    if changed:
        sys.exit("These files have changes that are not committed (left over from a stopped run? Then git checkout "
                 "puts them right):\n" + changed)


def run(command, limit=None):
    """Returns the exit status, or None after the limit, and the output. A signal ends the command first."""
    with tempfile.TemporaryFile("w+") as output:
        process = subprocess.Popen(command, cwd=ROOT, stdout=output, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                                   start_new_session=True)
        try:
            status = process.wait(limit)
        except subprocess.TimeoutExpired:
            status = None
        finally:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
        output.seek(0)
        return status, output.read()


class Tests:
    """The tests of a build directory."""

    def __init__(self, options):
        self.options = options
        self.excluded = set()

    def sanitizers(self):
        cache = (ROOT / self.options.build_dir / "CMakeCache.txt").read_text()
        found = re.search(r"^XRV_SANITIZE:\w+=(.*)$", cache, re.MULTILINE)
        return found[1].split(",") if found else []

    def build(self):
        """Returns the output where it fails."""
        status, output = run(["cmake", "--build", self.options.build_dir, "-j", str(self.options.jobs)])
        return None if status == 0 else output

    def names(self):
        output = subprocess.run(["ctest", "--test-dir", self.options.build_dir, "--show-only=json-v1"], cwd=ROOT,
                                check=True, capture_output=True, text=True).stdout
        return [test["name"] for test in json.loads(output)["tests"] if test["name"] not in self.excluded]

    def run(self, names, stops):
        """Returns how the failed ones failed, by name, and which were passed."""
        if not names:
            return {}, set()
        pattern = "^(" + "|".join(map(re.escape, names)) + ")$"
        command = ["ctest", "--test-dir", self.options.build_dir, "-j", str(self.options.jobs), "-R", pattern]
        status, output = run(command + (["--stop-on-failure"] if stops else []), self.options.limit)
        passed = set(re.findall(r"Test +#\d+: (\S+) \.+ +Passed", output))
        if status is None:
            begun = re.findall(r"^ *Start +\d+: (\S+)", output, re.MULTILINE)
            ended = set(re.findall(r"Test +#\d+: (\S+)", output))
            return {name: "hangs" for name in begun if name not in ended} or {"all tests": "take too long"}, passed
        listed = output.partition("The following tests FAILED:")[2]
        failed = re.findall(r"^\s*\d+ - (\S+) \(([^)]*)\)", listed, re.MULTILINE)
        return {name: how for name, how in failed if how != "Not Run"}, passed

    def run_surely(self, names, stops):
        """As run(), but tests that pass when they are run alone have not failed."""
        waiting, surely = list(names), {}
        while waiting and not (stops and surely):
            failed, passed = self.run(waiting, stops)
            for name, how in failed.items():
                is_sure = how in ("hangs", "take too long", "Timeout") or self.run([name], False)[0]
                if is_sure:
                    surely[name] = how
            if not failed:
                break
            waiting = [name for name in waiting if name not in passed and name not in failed]
        return surely


def try_break(entry, tests):
    """Returns the result as a sentence and whether the break was noticed."""
    with entry.applied():
        errors = tests.build()
        if errors:
            fault = re.search(r"^.*error: .*$", errors, re.MULTILINE)
            return "does not build: " + (fault[0] if fault else errors[-500:]), False
        names = tests.names()
        first = [name for name in names if "first" in entry.fields and re.search(entry.fields["first"], name)]
        failed = tests.run_surely(first, True)
        failed = failed or tests.run_surely([name for name in names if name not in first], True)
    if not failed:
        return "NOT NOTICED", False
    return "noticed by " + ", ".join(f"{name} ({how})" if how != "Failed" else name
                                     for name, how in sorted(failed.items())), True


def find_unreliable(tests):
    errors = tests.build()
    if errors:
        sys.exit("The product does not build without a break:\n" + errors[-2000:])
    failed = tests.run_surely(tests.names(), False)
    if failed:
        print("Left out, because they fail without a break: " + ", ".join(sorted(failed)), flush=True)
        tests.excluded.update(failed)


def table_row(entry, result):
    return "| " + " | ".join([entry.name, entry.fields["room"], result, entry.fields["loses"]]) + " |\n"


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter,
                                     usage=argparse.SUPPRESS)
    parser.add_argument("names", nargs="*", metavar="NAME", help="breaks to try")
    parser.add_argument("--list", action="store_true", help="only tell which breaks there are, and where")
    parser.add_argument("--build-dir", default="build", metavar="DIR", help="configured build directory (build)")
    parser.add_argument("--table", type=Path, metavar="FILE", help="write the results there too, as a table")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), metavar="N", help="at a time (all processors)")
    parser.add_argument("--limit", type=int, default=1200, metavar="SECONDS", help="for one run of the tests (1200)")
    parser.add_argument("--no-clean-run", action="store_true", help="trust that all tests pass without a break")
    return parser.parse_args()


def main():
    options = arguments()
    breaks = choose(read_list(), options.names)
    locate(breaks)
    if options.list:
        for entry in breaks:
            print(f"{entry.name}: {entry.file.relative_to(ROOT)} ({entry.fields['room']}). {entry.fields['loses']}")
        return 0
    tests = Tests(options)
    if not options.no_clean_run:
        find_unreliable(tests)
    table = options.table.open("w") if options.table else contextlib.nullcontext()
    noticed = tried = 0
    with table:
        if options.table:
            table.write("| break | room | result | what a user loses |\n|---|---|---|---|\n")
        for entry in breaks:
            start = time.monotonic()
            needed = entry.fields.get("only")
            if needed and needed not in tests.sanitizers():
                result, is_noticed = f"not tried: shows under the {needed} sanitizer only", False
            else:
                result, is_noticed = try_break(entry, tests)
                tried += 1
            noticed += is_noticed
            print(f"{entry.name}: {result} [{time.monotonic() - start:.0f} s]", flush=True)
            if options.table:
                table.write(table_row(entry, result))
                table.flush()
    print(f"{noticed} of {tried} breaks were noticed.")
    if tried:
        tests.build() # so that what is there fits the sources again
    return 0 if noticed == tried else 1


if __name__ == "__main__":
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.default_int_handler)
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit("stopped")
