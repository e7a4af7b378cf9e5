#!/usr/bin/env python3
"""Runs the benches, checks that those compared did the same work, and prints
one table."""

import argparse
import json
import os
import subprocess
import sys
import tempfile

import figures
import machine
import results
import table

# What --smoke leaves out: it takes seconds however few the rounds.
LONGEST = "-/(536870912|400000)"


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, prog="scripts/bench",
                                     allow_abbrev=False)
    parser.add_argument("--programs", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--subject", action="append", choices=list(figures.SUBJECTS),
                        help="only this one; may be given again")
    parser.add_argument("--rounds", type=int, default=9, help="of each benchmark (9)")
    parser.add_argument("--seconds", type=float, default=0.1,
                        help="that a round takes at least (0.1)")
    parser.add_argument("--json", default="bench.json",
                        help="the file for everything measured (bench.json in the build folder)")
    parser.add_argument("--print-only", action="store_true",
                        help="measure nothing, print the table of an earlier run")
    parser.add_argument("--markdown", action="store_true", help="print the table as Markdown")
    parser.add_argument("--update", metavar="FILE",
                        help="replace the table in this Markdown file")
    parser.add_argument("--check", action="store_true",
                        help="fail when a figure that must be reached is missed")
    parser.add_argument("--smoke", action="store_true",
                        help="run everything but the longest once, only for the checksums")
    parser.add_argument("--check-arguments", action="store_true", help=argparse.SUPPRESS)
    return parser.parse_args()


def measure(program, options):
    """All rounds of a program, ours and its peers in an order drawn by lot."""
    with tempfile.TemporaryDirectory(dir=".") as folder:
        output = os.path.join(folder, "output.json")
        command = [program, f"--benchmark_out={output}", "--benchmark_out_format=json",
                   "--benchmark_enable_random_interleaving=true"]
        if options.smoke:
            command += ["--benchmark_min_time=0.0001", f"--benchmark_filter={LONGEST}"]
        else:
            command += [f"--benchmark_min_time={options.seconds}",
                        f"--benchmark_repetitions={options.rounds}"]
        done = subprocess.run(command, cwd=".", check=False, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, text=True,
                              env=dict(os.environ, LC_ALL="C.UTF-8"))
        if done.returncode:
            raise SystemExit(f"{program} failed:\n{done.stderr}")
        with open(output, encoding="utf-8") as file:
            return results.rounds_of(json.load(file))


def measure_all(options, subjects):
    measured = {"machine": machine.describe(), "rounds": options.rounds,
                "subjects": subjects, "benchmarks": {}}
    for subject in subjects:
        print(f"measuring: {subject}", file=sys.stderr)
        program = os.path.join(options.programs, f"ovmem_bench_{subject}")
        measured["benchmarks"].update(measure(program, options))
    return measured


def report(measured, rows, options):
    runs = results.runs_of(measured)
    lines = [row.line(runs) for row in rows]
    form = table.markdown if options.markdown else table.text
    print(table.whole(measured, lines, form))
    if options.update:
        table.replace(options.update, table.whole(measured, lines, table.markdown))
    missed = any(line.met is False for line in lines)
    return 1 if missed and options.check else 0


def main():
    options = arguments()
    if options.check_arguments:
        return 0
    if options.update:
        options.update = os.path.abspath(options.update)
    options.programs = os.path.abspath(options.programs)
    os.chdir(os.path.dirname(options.programs))  # the build folder
    if options.print_only:
        measured = results.load(options.json)
    else:
        measured = measure_all(options, options.subject or list(figures.SUBJECTS))
    rows = list(figures.rows(measured["subjects"]))
    if not options.smoke:
        results.save(options.json, measured)
    missing = {name for row in rows for name in row.names} - set(measured["benchmarks"])
    if missing and not options.smoke:
        raise SystemExit(f"bench: figures of what was not measured: {sorted(missing)}")
    wrong = list(results.wrong_checksums(results.runs_of(measured), rows))
    for text in wrong:
        print(f"bench: not the same work: {text}", file=sys.stderr)
    if wrong:
        return 2
    return 0 if options.smoke else report(measured, rows, options)


if __name__ == "__main__":
    sys.exit(main())
