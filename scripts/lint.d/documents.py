"""What documents say of the tree: tests exist, and programs are the real ones."""

import re

from tree import Finding

README = "README.md"
PROGRAM = "examples/first_program.cpp"
ODDITIES = "docs/irregularities.md"
TEST = re.compile(r"^\s*(?:TYPED_TEST|TEST(?:_[FP])?)\(\s*(\w+),\s*(\w+)", re.M)
NAMED = re.compile(r"`(?:\w+/)?(\w+)\.([A-Z]\w+)`")


def check(tree):
    yield from _program(tree)
    yield from _oddities(tree)


def _program(tree):
    if README not in tree.paths or PROGRAM not in tree.paths:
        return
    if f"```cpp\n{tree.text(PROGRAM)}```" not in tree.text(README):
        yield Finding(README, 0, f"does not show {PROGRAM} as it is; copy it there")


def _oddities(tree):
    """Under every heading of the third level, tests that exist."""
    if ODDITIES not in tree.paths:
        return
    tests = {match for path in tree.of_kind("cpp")
             for match in TEST.findall(tree.text(path) or "")}
    heading = named = None
    for number, line in tree.lines(ODDITIES):
        if line.startswith("#"):
            yield from _untested(heading, named)
            heading = (number, line.lstrip("# ")) if line.startswith("### ") else None
            named = False
        for test in NAMED.findall(line):
            named = True
            if test not in tests:
                yield Finding(ODDITIES, number, f"there is no test {'.'.join(test)}")
    yield from _untested(heading, named)


def _untested(heading, named):
    if heading and not named:
        yield Finding(ODDITIES, heading[0], f"'{heading[1]}' names no test")
