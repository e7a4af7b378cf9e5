#!/usr/bin/env python3
"""run.py SOURCE BUILD DOCUMENT [--build]: does what a document tells its reader.

Runs all blocks of commands in one shell that stands in a copy of SOURCE, with an
empty home; compares their output where the document shows it; compiles every
program; configures and builds every CMakeLists.txt with the last program.

The commands that build the preset product take minutes, so BUILD, which is built
already, stands in for build/product. With --build they run as they are.
"""

import os
import shutil
import subprocess
import sys
import tempfile

from blocks import blocks_of

MARK = "--- the block of line "
WARNINGS = ["-std=c++11", "-Wall", "-Wextra", "-Wpedantic", "-Werror"]
# Building is done; all else is the reader's own cmake.
BUILT = """#!/bin/bash
case "$*" in
  '--preset product' | '--preset product --log-level=WARNING') ;;
  '--build --preset product' | '--build --preset product --target ovmem') ;;
  *) exec {cmake} "$@" ;;
esac
"""
NEVER = "#!/bin/bash\necho \"$0 $*: the machine has all that the tests need\" >&2\nexit 99\n"


class Reader:
    """Who has a clone, a home and a shell, and nothing else."""

    def __init__(self, source, folder):
        self.tree, self.home = os.path.join(folder, "tree"), os.path.join(folder, "home")
        self.tools, self.folder = os.path.join(folder, "tools"), folder
        for path in self.home, self.tools:
            os.mkdir(path)
        shutil.copytree(source, self.tree, symlinks=True,
                        ignore=shutil.ignore_patterns("build", ".git"))
        os.mkdir(os.path.join(self.tree, "build"))
        for name in "sudo", "apt-get":
            self.tool(name, NEVER)
        self.environment = {"HOME": self.home, "LC_ALL": "C.UTF-8",
                            "PATH": self.tools + ":" + os.environ["PATH"]}

    def tool(self, name, text):
        path = os.path.join(self.tools, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(path, 0o755)

    def has_built(self, build):
        self.tool("cmake", BUILT.format(cmake=shutil.which("cmake")))
        os.symlink(build, os.path.join(self.tree, "build", "product"))

    def run(self, command, **more):
        return subprocess.run(command, cwd=self.tree, env=self.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              check=False, **more)


def require(condition, text):
    if not condition:
        raise SystemExit("FAILED: " + text)


def follow_commands(reader, document, blocks):
    commands = [b for b in blocks if b.language == "sh" and b.remark != "not run"]
    script = "set -euo pipefail\n" + "".join(
        f"echo '{MARK}{b.line}'\n{b.text}" for b in commands)
    done = reader.run(["bash", "-c", script], stdin=subprocess.DEVNULL)
    require(done.returncode == 0,
            f"{document}: the last block below ended with {done.returncode}\n{done.stdout}")
    outputs = dict(part.split("\n", 1) for part in done.stdout.split(MARK)[1:])
    require(len(outputs) == len(commands), f"{document}: lost blocks:\n{done.stdout}")
    last = None
    for block in blocks:
        if block.remark == "output":
            require(last is not None, f"{document}:{block.line}: the output of what?")
            require(outputs[last] == block.text,
                    f"{document}:{block.line}: in place of\n{block.text}"
                    f"the commands write\n{outputs[last]}")
        last = str(block.line) if block in commands else None
    return len(commands)


def check_program(reader, document, block):
    where = f"{document}:{block.line}"
    if block.remark == "part of":
        with open(os.path.join(reader.tree, block.detail), encoding="utf-8") as file:
            require(block.text in file.read(), f"{where}: does not stand in {block.detail}")
        return
    done = reader.run(["g++", *WARNINGS, "-I", reader.tree, "-fsyntax-only", "-x", "c++", "-"],
                      input=block.text)
    require(done.returncode == 0, f"{where}: does not compile\n{done.stdout}")


def build_project(reader, document, block, program):
    """As a CMakeLists.txt beside app.cpp; the package is where the reader put it."""
    folder = os.path.join(reader.folder, f"project-{block.line}")
    os.mkdir(folder)
    for name, text in ("CMakeLists.txt", block.text), ("app.cpp", program):
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            file.write(text)
    for command in (["cmake", "-S", folder, "-B", folder + "/build",
                     f"-DCMAKE_PREFIX_PATH={reader.home}/ovmem"],
                    ["cmake", "--build", folder + "/build"], [folder + "/build/app"]):
        done = reader.run(command)
        require(done.returncode == 0,
                f"{document}:{block.line}: {command} ended with {done.returncode}\n{done.stdout}")


def main(source, build, document, *options):
    with open(os.path.join(source, document), encoding="utf-8") as file:
        blocks = blocks_of(file.read())
    if not blocks:
        print(f"{document}: nothing to do")
        return
    with tempfile.TemporaryDirectory() as folder:
        reader = Reader(source, folder)
        if options != ("--build",):
            require(not options, f"unknown {options}")
            reader.has_built(build)
        count = follow_commands(reader, document, blocks)
        program = None
        for block in blocks:
            if block.language == "cpp":
                check_program(reader, document, block)
                program = block.text
            elif block.language == "cmake":
                build_project(reader, document, block, program)
    print(f"{document}: {count} blocks of commands, {len(blocks)} in all")


if __name__ == "__main__":
    main(*sys.argv[1:])
