"""clang-tidy has nothing to say about a source that is installed or shown.

It needs the commands of build/dev. Most of its time goes into the headers of the
standard library, so it is given several sources of a folder at once, as one file
that includes them. Those that do not go together, since they use a name for two
things, it is given one by one. What was clean stays so until it, a header of the
tree, its command or .clang-tidy changes: build/dev/tidy/ knows."""

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
TOGETHER = 8
PRECOMPILED = re.compile(r" -Winvalid-pch| -include \S*/cmake_pch\.hxx")
OF_ONE = re.compile(r" -(?:o|c|MF|MT) \S+")
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
    batches = _batches([p for p in sources if p in commands], commands)
    _write_commands(tree, commands, batches)
    # The longest ones first, so that no processor is left with one at the end.
    batches.sort(key=lambda batch: -sum(len(tree.text(p)) for p in batch))
    with ThreadPoolExecutor(os.cpu_count() or 1) as pool:
        found = pool.map(lambda batch: _look(tree, batch, commands, common), batches)
        yield from sorted({finding for some in found for finding in some})


def _batches(sources, commands):
    """Of a folder, and with the same command but for the names."""
    alike = {}
    for path in sorted(sources):
        key = (os.path.dirname(path), OF_ONE.sub("", commands[path]["command"]))
        alike.setdefault(key, []).append(path)
    return [paths[at:at + TOGETHER] for paths in alike.values()
            for at in range(0, len(paths), TOGETHER)]


def _look(tree, batch, commands, common):
    said = common + "".join(commands[path]["command"] for path in batch)
    known = os.path.join(tree.file(OWN), _digest(tree, batch, said))
    if os.path.exists(known):
        return []
    findings = []
    if len(batch) == 1 or not _are_clean_together(tree, batch):
        for path in batch:
            findings += _ask(tree, path)
    if not findings:
        with open(known, "w", encoding="utf-8"):
            pass
    return findings


def _are_clean_together(tree, batch):
    """What it says of them all would be of the file that includes them, too, and some
    of it twice: so they are asked about alone if it says anything."""
    with open(tree.file(_name_of(batch)), "w", encoding="utf-8") as file:
        file.writelines(f'#include "{tree.file(path)}"\n' for path in batch)
    return not _ask(tree, _name_of(batch), "--checks=-bugprone-suspicious-include")


def _name_of(batch):
    return f"{OWN}/{batch[0].replace('/', '_')}"


def _ask(tree, path, *options):
    done = subprocess.run([TOOL, "-p", OWN, "--quiet", path, *options], cwd=tree.root,
                          text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          check=False)
    findings = [Finding(os.path.relpath(file, os.path.realpath(tree.root)), int(line),
                        text + end)
                for file, line, text, end in SAID.findall(done.stdout)]
    if done.returncode and not findings:
        return [Finding(path, 0, f"{TOOL} fails: {(done.stdout + done.stderr).strip()}")]
    return findings


def _commands(tree):
    """How each source is compiled. Of a source that tests compile once more it is the
    command of its own target, which stands first; without g++'s precompiled headers,
    which clang-tidy cannot read."""
    file = tree.file(f"{BUILD}/compile_commands.json")
    if not os.path.exists(file):
        return {}
    root = os.path.realpath(tree.root)
    own = {}
    with open(file, encoding="utf-8") as opened:
        for one in json.load(opened):
            one["command"] = PRECOMPILED.sub("", one["command"])
            own.setdefault(os.path.relpath(os.path.realpath(one["file"]), root), one)
    return own


def _write_commands(tree, commands, batches):
    """For clang-tidy: those of the sources, and those of the batches."""
    given = list(commands.values())
    for batch in batches:
        first = commands[batch[0]]
        file = tree.file(_name_of(batch))
        given.append({**first, "file": file,
                      "command": first["command"].replace(first["file"], file)})
    os.makedirs(tree.file(OWN), exist_ok=True)
    with open(tree.file(f"{OWN}/compile_commands.json"), "w", encoding="utf-8") as list_:
        json.dump(given, list_)


def _digest(tree, paths, rest=""):
    digest = hashlib.sha256(rest.encode())
    for path in paths:
        digest.update(f"\0{path}\0{tree.text(path)}".encode())
    return digest.hexdigest()
