"""Prints what no test ran: report.py COVERAGE.json EXCEPTIONS.txt, the first from
gcovr. Exits with 1 if something of the library has no reason among the exceptions,
or an exception is none any more, or too few lines of another part were run."""

import json
import sys

LIBRARY = "OvMemCppBinding/"
OTHERS = ("emulator/", "cli/")
ENOUGH = 98  # per cent of the lines of the others
ADVICE = "NOT RUN: write its test, or its reason in exceptions.txt"


class Tally:
    """What of one kind there is, and what of it was not run."""

    def __init__(self, kind):
        self.kind = kind
        self.total = 0
        self.missed = []

    def count(self, place, complete):
        self.total += 1
        if not complete:
            self.missed.append(place)

    def share(self):
        run = self.total - len(self.missed)
        return 100 * run / self.total if self.total else 100

    def summary(self):
        run = self.total - len(self.missed)
        return f"{self.kind}: {run} of {self.total} ({self.share():.1f} %)"


def all_ways(line):
    """Whether the line's decision went all its ways, None if it has none. For a few
    gcovr cannot tell; there every branch of the line has to be taken."""
    decision = line.get("gcovr/decision")
    if decision is None:
        return None
    if decision["type"] == "conditional":
        return bool(decision["count_true"] and decision["count_false"])
    if decision["type"] == "switch":
        return bool(decision["count"])
    return all(branch["count"] for branch in line["branches"])


def tallies(report, folder, prefix=""):
    lines, decisions = Tally(prefix + "lines"), Tally(prefix + "decisions")
    for file in report["files"]:
        if not file["file"].startswith(folder):
            continue
        for line in file["lines"]:
            if line.get("gcovr/noncode") or line.get("gcovr/excluded"):
                continue
            place = file["file"], line["line_number"]
            lines.count(place, line["count"])
            ways = all_ways(line)
            if ways is not None:
                decisions.count(place, ways)
    return lines, decisions


def read_exceptions(path):
    """(path, text of the line) -> why no test runs it. One to a block: the path, the
    text, the reason."""
    with open(path, encoding="utf-8") as file:
        blocks = file.read().split("\n\n")
    reasons = {}
    for block in blocks:
        lines = [line.strip() for line in block.splitlines() if not line.startswith("#")]
        if lines:
            reasons[lines[0], lines[1]] = " ".join(lines[2:])
    return reasons


def text_of(place):
    with open(place[0], encoding="utf-8") as file:
        return file.read().splitlines()[place[1] - 1].strip()


def of_library(report, reasons):
    """Whether nothing is missed but what has a reason, and every reason is needed."""
    used = set()
    for tally in tallies(report, LIBRARY):
        print(tally.summary())
        for place in tally.missed:
            key = place[0], text_of(place)
            used.add(key)
            print(f"  {place[0]}:{place[1]}: {key[1]}")
            print("    " + reasons.get(key, ADVICE))
    for path, text in sorted(reasons.keys() - used):
        print(f"exceptions.txt: '{text}' of {path} is run; take it out")
    return used == reasons.keys()


def of_other(report, folder):
    lines, _ = tallies(report, folder, folder + " ")
    print(lines.summary())
    for place in lines.missed:
        print(f"  {place[0]}:{place[1]}: {text_of(place)}")
    if lines.share() < ENOUGH:
        print(f"  TOO FEW: at least {ENOUGH} % are wanted; write their tests")
    return lines.share() >= ENOUGH


def main(coverage, exceptions):
    with open(coverage, encoding="utf-8") as file:
        report = json.load(file)
    well = [of_library(report, read_exceptions(exceptions)),
            *(of_other(report, folder) for folder in OTHERS)]
    return 0 if all(well) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
