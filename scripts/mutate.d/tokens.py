"""C++ as tokens, without comments, preprocessor lines and static_assert."""

import re
from collections import namedtuple

# `kind` is word, number, string, char or sign; `begin` and `end` count
# characters of the source.
Token = namedtuple("Token", "kind text begin end")

LEXER = re.compile(r"""
    (?P<skip>  \s+ | //[^\n]* | /\*.*?\*/ | ^[ ]*\#(?:[^\n\\]|\\.)* )
  | (?P<string> (?:u8|u|U|L)? (?: R"\((?s:.*?)\)" | "(?:[^"\\\n]|\\.)*" ) )
  | (?P<char>   '(?:[^'\\\n]|\\.)+' )
  | (?P<number> \.?\d(?:[eEpP][+-]|[\w.'])* )
  | (?P<word>   [A-Za-z_]\w* )
  | (?P<sign>   <<= | >>= | \.\.\. | -> | :: | \+\+ | -- | << | && | \|\|
              | [-+*/%&|^=!<>]= | . )
""", re.X | re.M | re.S)

PAIRS = {"(": ")", "[": "]", "{": "}"}


def tokens(source):
    found = [Token(m.lastgroup, m.group(), m.start(), m.end())
             for m in LEXER.finditer(source) if m.lastgroup != "skip"]
    kept = []
    at = 0
    while at < len(found):
        if found[at].text == "static_assert":
            at = closing(found, at + 1)
        else:
            kept.append(found[at])
        at += 1
    return kept


def closing(tokens_, at):
    """The index of the bracket that closes the one at index `at`."""
    depth = 0
    for index in range(at, len(tokens_)):
        if tokens_[index].kind == "sign":
            if tokens_[index].text in PAIRS:
                depth += 1
            elif tokens_[index].text in PAIRS.values():
                depth -= 1
            if depth == 0:
                return index
    raise ValueError(f"no end of '{tokens_[at].text}' at {tokens_[at].begin}")
