#!/usr/bin/env python3
"""every_test_runs.py SOURCE BUILD: every file of tests is part of a program or
script that CTest starts, every test of a program is of some entry of CTest, and
none has a name that GoogleTest takes for disabled."""

import json
import os
import re
import subprocess
import sys


def commands(build):
    """The command of every entry of CTest."""
    listed = subprocess.run(["ctest", "--show-only=json-v1"], cwd=build, check=True,
                            stdout=subprocess.PIPE)
    return [test["command"] for test in json.loads(listed.stdout)["tests"]
            if "command" in test]


def files(source):
    for folder, _, names in os.walk(os.path.join(source, "tests")):
        yield from (os.path.join(folder, name) for name in names
                    if name.rsplit(".", 1)[0].endswith("_test"))


def targets(build):
    """By source, the targets that compile it."""
    found = {}
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as opened:
        for one in json.load(opened):
            output = one.get("output") or one["command"].split(" -o ")[1].split()[0]
            target = output.split("CMakeFiles/")[1].split(".dir/")[0]
            for file in parts(one["file"]):
                found.setdefault(os.path.realpath(file), set()).add(target)
    return found


def parts(file):
    """The sources that are compiled as this one, which may be several."""
    if "/Unity/unity_" not in file:
        return [file]
    with open(file, encoding="utf-8") as opened:
        return re.findall(r'^#include "(.*)"$', opened.read(), re.M)


def tests(program, *options):
    """Of a program of GoogleTest, Suite.Name of what these options select."""
    listed = subprocess.run([program, "--gtest_list_tests", *options], check=True,
                            text=True, stdout=subprocess.PIPE)
    found, suite = set(), ""
    for line in listed.stdout.splitlines():
        name = line.split("#")[0].strip()
        if line.startswith("  "):
            found.add(suite + name)
        elif name.endswith("."):
            suite = name
    return found


def of_files(source, build, started):
    compiled = targets(build)
    words = {word for command in started for word in command}
    programs = {os.path.basename(command[0]) for command in started}
    for file in sorted(files(source)):
        path = os.path.relpath(file, source)
        if not file.endswith(".cpp"):
            if file not in words:
                yield f"{path}: no entry of CTest starts it"
            continue
        of = compiled.get(os.path.realpath(file), set())
        if not of:
            yield f"{path}: no program is built from it"
        for target in sorted(of - programs):
            yield f"{path}: no entry of CTest starts its program {target}"


def is_disabled(name):
    """Whether GoogleTest lists it, but does not run it."""
    return any(part.startswith("DISABLED_") for part in re.split(r"[./]", name))


def of_programs(started):
    selected = {}
    for command in started:
        filters = [word for word in command if word.startswith("--gtest_filter=")]
        if filters:
            selected.setdefault(command[0], []).append(filters[0])
    for program, filters in sorted(selected.items()):
        every = tests(program)
        run = set().union(*(tests(program, one) for one in filters))
        for name in sorted(every - run):
            yield f"{os.path.basename(program)}: no entry of CTest selects {name}"
        for name in sorted(filter(is_disabled, every)):
            yield f"{os.path.basename(program)}: {name} is disabled and never runs"


def main(source, build):
    started = commands(build)
    found = [*of_files(source, build, started), *of_programs(started)]
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(*map(os.path.realpath, sys.argv[1:])))
