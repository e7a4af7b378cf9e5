"""What the programs measured: bench.json, and the medians of it."""

import json
import re
import statistics


class Run:
    """All rounds of one benchmark."""

    def __init__(self, rounds):
        self.rounds = rounds

    def seconds(self, clock):
        """The median; clock is cpu, of the process, or real."""
        return statistics.median(one[f"{clock}_seconds"] for one in self.rounds)

    def counter(self, name):
        return statistics.median(one[name] for one in self.rounds)

    def checksums(self):
        return {one.get("checksum") for one in self.rounds}


UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}
OWN_KEYS = {"cpu_time", "real_time", "time_unit", "name", "family_index",
            "per_family_instance_index", "run_name", "run_type", "threads", "repetitions",
            "repetition_index"}


def rounds_of(output):
    """From the output of a program, as JSON: lists of rounds by name."""
    found = {}
    for entry in output["benchmarks"]:
        if entry.get("error_occurred"):
            raise SystemExit(f"bench: {entry['name']}: {entry['error_message']}")
        if entry["run_type"] != "iteration":
            continue
        name = re.sub(r"/(real_time|iterations:\d+)", "", entry["run_name"])
        unit = UNITS[entry["time_unit"]]
        one = {key: value for key, value in entry.items() if key not in OWN_KEYS}
        one["cpu_seconds"] = entry["cpu_time"] * unit
        one["real_seconds"] = entry["real_time"] * unit
        found.setdefault(name, []).append(one)
    return found


def runs_of(results):
    return {name: Run(rounds) for name, rounds in results["benchmarks"].items()}


def wrong_checksums(runs, rows):
    """What a row compares, but did not do the same work, or does not show it."""
    for row in rows:
        compared = [runs[name].checksums() for name in row.names if name in runs]
        if any(None in sums for sums in compared):
            yield f"{' and '.join(row.names)}: no checksum"
        elif any(len(sums) > 1 for sums in compared):
            yield f"{' and '.join(row.names)}: the rounds differ"
        elif row.same_work and len(set().union(*compared)) > 1:
            yield f"{' and '.join(row.names)}: the results differ"


def load(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def save(path, results):
    with open(path, "w", encoding="utf-8") as file:
        json.dump(results, file, indent=1)
        file.write("\n")
