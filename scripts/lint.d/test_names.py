"""Tests are named by sentences about behaviour."""

import re

from tree import Finding

TEST = re.compile(r"^\s*(TYPED_TEST|TEST(?:_[FP])?)\(\s*(\w+),\s*(\w*)")


def check(tree):
    seen = {}
    for path in tree.of_kind("cpp"):
        text = tree.text(path)
        for match in re.finditer(TEST.pattern, text, re.M):
            number = text.count("\n", 0, match.start(3)) + 1
            name = match.group(3)
            if "_" in name or not re.match(r"[A-Z][a-z0-9]*[A-Z0-9]", name):
                yield Finding(path, number,
                              f"'{name}': name the behaviour, in words without '_'")
            full = (match.group(2), name)
            if full in seen:
                yield Finding(path, number,
                              f"{'.'.join(full)} is the name of a test in {seen[full]} too")
            seen[full] = path
