"""clang-tidy has nothing to say about a source that is installed or shown.

It needs the commands of build/dev. A source that was clean stays so until it, a
header of the tree, its command or .clang-tidy changes: build/dev/tidy/ knows."""

import hashlib
import json
import os
import re
import subprocess
from concurrent.futures import ThreadPoolExecutor

from tree import Finding

TOOL = "clang-tidy-14"
BUILD = "build/dev"
OWN = f"{BUILD}/tidy"
FOLDERS = ("OvMemCppBinding/", "emulator/", "cli/", "examples/")
PRECOMPILED = re.compile(r" -Winvalid-pch| -include \S*/cmake_pch\.hxx")
SAID = re.compile(r"^(/\S+?):(\d+):\d+: (?:error|warning): (.*?)(?:,-warnings-as-errors)?(\]?)$",
                  re.M)


def check(tree):
    commands = _commands(tree)
    sources = [p for p in tree.of_kind("cpp")
               if p.endswith(".cpp") and p.startswith(FOLDERS)]
    for path in sources:
        if path not in commands:
            yield Finding(path, 0, f"no target of {BUILD} compiles it")
    common = _digest(tree, [".clang-tidy", *(p for p in tree.paths if p.endswith(".h"))])
    # The longest ones first, so that no processor is left with one at the end.
    known = sorted((p for p in sources if p in commands), key=lambda p: -len(tree.text(p)))
    with ThreadPoolExecutor(os.cpu_count() or 1) as pool:
        found = pool.map(lambda p: _look(tree, p, common + commands[p]), known)
        yield from sorted({finding for some in found for finding in some})


def _look(tree, path, rest):
    known = os.path.join(tree.file(OWN), _digest(tree, [path], rest))
    if os.path.exists(known):
        return []
    done = subprocess.run([TOOL, "-p", OWN, "--quiet", path], cwd=tree.root, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    findings = [Finding(os.path.relpath(file, os.path.realpath(tree.root)), int(line),
                        text + end)
                for file, line, text, end in SAID.findall(done.stdout)]
    if done.returncode and not findings:
        return [Finding(path, 0, f"{TOOL} fails: {(done.stdout + done.stderr).strip()}")]
    if not findings:
        with open(known, "w", encoding="utf-8"):
            pass
    return findings


def _commands(tree):
    """The command of each source. Of a source that tests compile once more it is
    the command of its own target, which stands first; clang-tidy is given a list of
    just these, without g++'s precompiled headers: so it sees missing includes."""
    file = tree.file(f"{BUILD}/compile_commands.json")
    if not os.path.exists(file):
        return {}
    root = os.path.realpath(tree.root)
    own = {}
    with open(file, encoding="utf-8") as opened:
        for one in json.load(opened):
            one["command"] = PRECOMPILED.sub("", one["command"])
            own.setdefault(os.path.relpath(os.path.realpath(one["file"]), root), one)
    os.makedirs(tree.file(OWN), exist_ok=True)
    with open(tree.file(f"{OWN}/compile_commands.json"), "w", encoding="utf-8") as list_:
        json.dump(list(own.values()), list_)
    return {path: one["command"] for path, one in own.items()}


def _digest(tree, paths, rest=""):
    digest = hashlib.sha256(rest.encode())
    for path in paths:
        digest.update(f"\0{path}\0{tree.text(path)}".encode())
    return digest.hexdigest()
