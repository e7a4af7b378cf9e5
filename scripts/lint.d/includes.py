"""What a C++ file includes."""

import re

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
OURS = ("OvMemCppBinding/", "emulator/", "cli/", "examples/", "tests/", "bench/",
        "fuzz/")


def of(tree, path):
    """Triples of line number, opening mark and included path."""
    for number, line in tree.lines(path):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1), match.group(2)


def ours(tree, path):
    """Pairs of line number and path, for what is included of this project."""
    return [(number, target) for number, _, target in of(tree, path)
            if target.startswith(OURS)]
