"""The fenced blocks of a Markdown document.

A comment of its own line before a block says what a reader is not to do with it:

    <!-- not run: WHY -->      the commands are shown only
    <!-- output -->            it is what the commands before it write
    <!-- part of FILE -->      it stands so in FILE, which a test builds and runs
"""

import re
from typing import NamedTuple

COMMENT = re.compile(r"<!-- (not run|output|part of)(?::? (\S.*?))? -->$")
LANGUAGES = ("sh", "cpp", "cmake", "text", "xml", "")


class Block(NamedTuple):
    line: int       # of its first line of text
    language: str
    remark: str     # "", "not run", "output" or "part of"
    detail: str     # what follows the remark
    text: str


def blocks_of(text):
    """All of them in order. Raises ValueError for what it does not understand."""
    found, remark, opened = [], ("", ""), None
    for number, line in enumerate(text.split("\n"), 1):
        if opened is not None:
            if line == "```":
                found.append(Block(opened + 1, language, *remark, body))
                opened, remark = None, ("", "")
            else:
                body += line + "\n"
        elif line.lstrip().startswith("```"):
            opened, language, body = number, line[3:], ""
            if line[:3] != "```" or language not in LANGUAGES:
                raise ValueError(f"line {number}: '{line}' opens no known block")
        elif COMMENT.match(line):
            kind, detail = COMMENT.match(line).groups()
            remark = (kind, detail or "")
        elif line.startswith("<!-- not") or line.startswith("<!-- part"):
            raise ValueError(f"line {number}: '{line}' says nothing that is known")
        elif line and remark[0]:
            raise ValueError(f"line {number}: no block follows '{remark[0]}'")
    if opened is not None or remark[0]:
        raise ValueError("a block or a remark is left open at the end")
    return found
