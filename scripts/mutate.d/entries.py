"""The entries of CTest that are to notice a change, in the order of their chances."""

import glob
import json
import os
import re
import subprocess
from collections import namedtuple

# `target` is the file to build, below the build folder.
Entry = namedtuple("Entry", "name target command")

# Of the label unit, but about what the tests themselves are made of.
OTHERS = ("ovmem.support.", "ovmem.wire.WirePlayer")

ADD_TEST = re.compile(r"^add_test\((?:\[=*\[)?([^\s\]]+)(?:\]=*\])? (.*)\)$", re.M)
ARGUMENT = re.compile(r'"([^"]*)"')


def entries(build, part):
    listed = subprocess.run(["ctest", "--show-only=json-v1"], cwd=build, check=True,
                            stdout=subprocess.PIPE)
    commands = _commands(build)
    found = []
    for test in json.loads(listed.stdout)["tests"]:
        name = test["name"]
        wanted = name in part.last or set(part.labels) & set(_labels(test))
        if not wanted or name.startswith(OTHERS):
            continue
        command = commands[name]
        if any(a.startswith("--gtest_filter") for a in command):
            command += ["--gtest_fail_fast", "--gtest_brief=1"]
        found.append(Entry(name, os.path.relpath(command[0], build), command))
    return found


def ordered(entries_, path, part, seconds):
    """Those of the class first, then those of its folder; of these the quick ones."""
    *_, folder, name = path.split("/")
    stem = name.rsplit(".", 1)[0]

    def chance(entry):
        if entry.name in part.last:
            return 5 + part.last.index(entry.name)
        if entry.name.startswith("ovmem.wire."):
            return 4
        if entry.name.endswith("." + stem):
            return 0
        if stem in entry.name:
            return 1
        return 2 if entry.name.startswith(f"ovmem.{folder}.") else 3

    return sorted(entries_, key=lambda e: (chance(e), seconds[e.name]))


def _commands(build):
    """By name; CTest itself says nothing of a program that is not built yet."""
    found = {}
    for file in glob.glob(os.path.join(build, "**", "CTestTestfile.cmake"), recursive=True):
        with open(file, encoding="utf-8") as opened:
            for name, arguments in ADD_TEST.findall(opened.read()):
                found[name] = ARGUMENT.findall(arguments)
    return found


def _labels(test):
    return next((p["value"] for p in test["properties"] if p["name"] == "LABELS"), [])
