"""Length of files and lines, and white space."""

from tree import Finding

SOURCES = ("cpp", "cmake", "shell", "python")
MAX_LINES = 500


def width(path, kind):
    if path.startswith("OvMemCppBinding/"):
        return 80
    return 120 if kind == "markdown" else 100


def check(tree):
    for path in tree.paths:
        if tree.text(path) is None or path.startswith(("tests/data/", "fuzz/corpus/")):
            continue
        kind = tree.kind(path)
        if kind in SOURCES + ("markdown",):
            yield from _lengths(tree, path, kind)
        yield from _white_space(tree, path, kind)


def _lengths(tree, path, kind):
    count = tree.text(path).count("\n")
    if count > MAX_LINES:
        yield Finding(path, 0, f"{count} lines; split it, {MAX_LINES} is the limit")
    limit = width(path, kind)
    for number, line in tree.lines(path):
        table = kind == "markdown" and line.lstrip().startswith("|")
        if len(line) > limit and not table:
            yield Finding(path, number, f"{len(line)} columns; the limit is {limit}")


def _white_space(tree, path, kind):
    text = tree.text(path)
    for number, line in tree.lines(path):
        if line != line.rstrip():
            yield Finding(path, number, "white space at the end of the line")
        # In C++ clang-format sees to it, and knows a tab in a raw string.
        if "\t" in line and kind in SOURCES and kind != "cpp":
            yield Finding(path, number, "a tab; indent with blanks")
    if text and not text.endswith("\n"):
        yield Finding(path, 0, "no line feed at the end of the file")
