"""The places of a source that can be changed, and what to."""

import re
from collections import namedtuple

from statements import statements
from tokens import closing, tokens

# One place: the characters from `begin` to `end`, which one of `replacements`
# may take the place of.
Place = namedtuple("Place", "path mutator begin end replacements")

BINARY = {
    "comparison": {"==": ["!="], "!=": ["=="], "<": ["<=", ">="], ">": [">=", "<="],
                   "<=": ["<", ">"], ">=": [">", "<"]},
    "arithmetic": {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"]},
    "logic": {"&&": ["||"], "||": ["&&"]},
    "assignment": {"+=": ["=", "-="], "-=": ["=", "+="], "*=": ["=", "/="]},
}
UNARY = {"!": [""], "++": ["--"], "--": ["++"]}
WORDS = {"true": ["false"], "false": ["true"], "break": [""], "continue": [""]}


def places(path, source):
    """The places of one file, in the order of their beginnings."""
    found = tokens(source)
    all_ = [place for index in range(len(found))
            for place in _of_token(path, source, found, index)]
    all_ += [Place(path, "statement", found[first].begin, found[last].begin, [""])
             for first, last in statements(found)]
    return sorted(all_)


def line_of(place, source):
    return source.count("\n", 0, place.begin) + 1


def changed(source, place, replacement):
    """The source after the change, as many lines long as before."""
    lines = source.count("\n", place.begin, place.end) - replacement.count("\n")
    return source[:place.begin] + replacement + "\n" * lines + source[place.end:]


def _of_token(path, source, found, index):
    token = found[index]

    def place(mutator, replacements, begin=token.begin, end=token.end):
        return Place(path, mutator, begin, end, replacements)

    if token.kind == "number" and not _is_pure(found, index):
        yield place("number", _numbers(token.text))
    elif token.kind == "char":
        yield place("character", ["'x'" if token.text != "'x'" else "'y'"])
    elif token.kind == "string" and found[index - 1].text != "extern":
        yield place("string", _strings(token.text))
    elif token.text in WORDS:
        yield place("word", WORDS[token.text])
    elif token.text in ("if", "while"):
        yield from _condition(place, source, found, index + 1)
    elif token.text == "for":
        yield from _loop(place, source, found, index + 1)
    elif token.text == "?":
        yield place("branch", ["|| true ?", "&& false ?"])
    elif token.text in UNARY:
        yield place("unary", UNARY[token.text])
    elif _is_binary(source, token):
        for mutator, replacements in BINARY.items():
            if token.text in replacements:
                yield place(mutator, replacements[token.text])


def _is_binary(source, token):
    """Between blanks, as the format puts it; the others are of types."""
    return source[token.begin - 1].isspace() and source[token.end].isspace()


def _is_pure(found, index):
    """The 0 of a function that is virtual only."""
    return found[index - 1].text == "=" and found[index - 2].text in (")", "const")


def _numbers(text):
    digits, suffix = re.fullmatch(r"(0[xX][0-9a-fA-F]+|[\d.]+)(\w*)", text).groups()
    if "." in digits:
        values = [str(float(digits) + 1), str(float(digits) - 1), "0.0"]
    else:
        octal = re.fullmatch("0[0-7]+", digits)
        value = int(digits, 8 if octal else 0)
        values = [str(v) for v in (value + 1, value - 1, 0) if v != value and v >= 0]
        if value == 0:
            values.append("-1")
    return [value + suffix for value in dict.fromkeys(values)]


def _strings(text):
    quote = text.index('"')
    if text.endswith('""'):
        return [text[:-1] + 'x"']
    rest = re.fullmatch(r'(?:\\[0-7]{1,3}|\\x[0-9a-fA-F]+|\\.|[^\\])(.*)',
                        text[quote + 1:], re.S).group(1)
    return [text[:quote] + '""', text[:quote] + ('"#' if text[quote + 1] != "#" else '"%') + rest]


def _condition(place, source, found, opening):
    if found[opening].text != "(":  # if constexpr
        return
    begin, end = found[opening].end, found[closing(found, opening)].begin
    yield place("condition", ["true", "false", f"!({source[begin:end]})"], begin, end)


def _loop(place, source, found, opening):
    last = closing(found, opening)
    ends = [t for t in found[opening:last] if t.text == ";"]
    if len(ends) != 2 or not source[ends[0].end:ends[1].begin].strip():
        return
    begin, end = ends[0].end + 1, ends[1].begin
    yield place("condition", ["false", f"!({source[begin:end]})"], begin, end)
