"""Links between documents, and from sources to documents, lead somewhere."""

import os
import re

from tree import Finding

LINK = re.compile(r"(?<!!)\[[^\]]*\]\(([^)\s]+)\)|!\[[^\]]*\]\(([^)\s]+)\)")
MENTION = re.compile(r"\bdocs/[\w-]+\.md(?:#[\w-]+)?")
DELIBERATE = re.compile(r"(?<![\w/-])irregularities\.md#[\w-]+")
EXPLICIT = re.compile(r"<a (?:id|name)=\"([^\"]+)\"")


def check(tree):
    known = set(tree.paths)
    for path in tree.of_kind("markdown"):
        for number, target in _links(tree, path):
            yield from _follow(tree, known, path, number, target,
                               os.path.dirname(path))
    if not any(p.startswith("docs/") for p in tree.of_kind("markdown")):
        return  # a tree without documents
    for path in tree.of_kind("cpp", "cmake", "shell"):
        for number, line in tree.lines(path):
            for mention in MENTION.findall(line):
                yield from _follow(tree, known, path, number, mention, "")
            for mention in DELIBERATE.findall(line):
                yield from _follow(tree, known, path, number, mention, "docs")


def anchors(text):
    """What a '#...' may name: headings as their slugs, and explicit ones."""
    found = set(EXPLICIT.findall(text))
    for line in _outside_code(text):
        if re.match(r"#+ ", line):
            title = re.sub(r"[^\w\- ]", "", line.lstrip("#").strip().lower())
            slug, count = title.replace(" ", "-"), 1
            while slug in found:
                slug = f"{title.replace(' ', '-')}-{count}"
                count += 1
            found.add(slug)
    return found


def _links(tree, path):
    for number, line in enumerate(_outside_code(tree.text(path)), 1):
        for groups in LINK.findall(re.sub(r"`[^`]*`", "", line)):
            target = groups[0] or groups[1]
            if not re.match(r"[a-z]+:", target):
                yield number, target


def _outside_code(text):
    """The lines, those of fenced blocks emptied."""
    fenced = False
    for line in text.split("\n"):
        fence = line.lstrip().startswith("```")
        yield "" if fenced or fence else line
        fenced ^= fence


def _follow(tree, known, path, number, target, folder):
    file, _, anchor = target.partition("#")
    there = os.path.normpath(os.path.join(folder, file)) if file else path
    if there not in known and not any(k.startswith(there + "/") for k in known):
        yield Finding(path, number, f"'{target}': there is no {there}")
    elif anchor and there in known and anchor not in anchors(tree.text(there)):
        yield Finding(path, number, f"'{target}': {there} has no #{anchor}")
