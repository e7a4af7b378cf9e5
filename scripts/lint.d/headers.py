"""Include guards, no anonymous namespace in a header, and the form of include lines."""

import re

import includes
from tree import Finding


def check(tree):
    known = set(tree.paths)
    for path in tree.of_kind("cpp"):
        if path.endswith(".h"):
            yield from _guard(tree, path)
            yield from _anonymous(tree, path)
        quoted = [(n, t) for n, mark, t in includes.of(tree, path) if mark == '"']
        for number, target in quoted:
            if target not in known:
                yield Finding(path, number,
                              f"'{target}': no such file; write the path from the root")
        own = re.sub(r"(_test)?\.cpp$", ".h", path)
        if path.endswith(".cpp") and own in known:
            yield from _own_first(tree, path, own)


def _guard(tree, path):
    guard = re.sub(r"\W", "_", path).upper()
    directives = [line.split() for _, line in tree.lines(path)
                  if line.startswith("#")]
    if directives[:2] != [["#ifndef", guard], ["#define", guard]]:
        yield Finding(path, 1, f"begin with the include guard {guard}")


def _anonymous(tree, path):
    # g++ says so too, but not where test files are compiled a few at a time.
    for number, line in tree.lines(path):
        if re.match(r"\s*namespace\s*\{", line):
            yield Finding(path, number, "no anonymous namespace in a header")


def _own_first(tree, path, own):
    first = next(includes.of(tree, path), (1, "", ""))
    if first[2] != own:
        yield Finding(path, first[0], f'include the own header first: "{own}"')
