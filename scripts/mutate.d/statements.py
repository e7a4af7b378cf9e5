"""Which tokens of a source form statements of expressions alone."""

from tokens import closing

SCOPES = {"namespace", "class", "struct", "enum", "union", "extern"}
NOT_EXPRESSIONS = SCOPES | {
    "auto", "bool", "break", "case", "char", "const", "constexpr", "continue",
    "default", "do", "double", "else", "explicit", "float", "for", "friend", "if",
    "inline", "int", "long", "private", "protected", "public", "return", "short",
    "signed", "static", "switch", "template", "try", "typedef", "typename",
    "unsigned", "using", "virtual", "void", "volatile", "while"}
BEFORE_BLOCK = {")", "]", "else", "do", "try", "const", "override", "noexcept",
                "mutable", "}", ";", ":"}


def statements(tokens):
    """Pairs of first and last index; the last one is the ';'."""
    blocks = _blocks(tokens)
    for index in range(len(tokens)):
        if _may_begin(tokens, index, blocks) and _is_expression(tokens, index):
            yield index, _end(tokens, index)


def _blocks(tokens):
    """For every token: does it stand in a block of code, outside brackets?"""
    inside = []
    kinds = [False]  # of the open brackets, those that hold code
    for index, token in enumerate(tokens):
        text = token.text if token.kind == "sign" else ""
        if text in (")", "]", "}"):
            kinds.pop()
        inside.append(kinds[-1])
        if text in ("(", "["):
            kinds.append(False)
        elif text == "{":
            kinds.append(_opens_code(tokens, index))
    return inside


def _opens_code(tokens, at):
    if tokens[at - 1].text in BEFORE_BLOCK:
        return not _is_scope(tokens, at)
    # Behind a return type that trails.
    return any(t.text == "->" for t in _head(tokens, at)) and \
        any(t.text == "(" for t in _head(tokens, at))


def _is_scope(tokens, at):
    return any(t.text in SCOPES for t in _head(tokens, at))


def _head(tokens, at):
    """What stands before a '{', back to the end of what came before it."""
    begin = at
    while begin > 0 and tokens[begin - 1].text not in ("{", "}", ";"):
        begin -= 1
    return tokens[begin:at]


def _may_begin(tokens, index, blocks):
    if index == 0 or not blocks[index]:
        return False
    before = tokens[index - 1]
    if before.text in (";", "{", "}", "else", "do"):
        return True
    if before.text == ":":
        return "case" in {t.text for t in _head(tokens, index)}
    return before.text == ")" and _is_control(tokens, index - 1)


def _is_control(tokens, close):
    """Does this ')' end the head of an if or a loop?"""
    depth = 0
    for index in range(close, -1, -1):
        if tokens[index].text == ")":
            depth += 1
        elif tokens[index].text == "(":
            depth -= 1
            if depth == 0:
                return tokens[index - 1].text in ("if", "for", "while")
    return False


def _is_expression(tokens, index):
    first = tokens[index]
    if first.kind == "word" and first.text in NOT_EXPRESSIONS:
        return False
    if first.text in ("delete", "throw", "++", "--", "*", "("):
        return True
    if first.kind != "word":
        return False
    # A name with what hangs on it; a type would be followed by another name.
    index += 1
    while tokens[index].text in ("::", ".", "->", "(", "[", "<"):
        if tokens[index].text in ("(", "["):
            index = closing(tokens, index) + 1
        elif tokens[index].text == "<":
            while tokens[index].text != ">":
                index += 1
            index += 1
        else:
            index += 2
    return tokens[index].kind == "sign" and \
        tokens[index].text not in ("*", "&", "&&", "{", ":", "...")


def _end(tokens, index):
    while tokens[index].text != ";":
        if tokens[index].kind == "sign" and tokens[index].text in ("(", "[", "{"):
            index = closing(tokens, index)
        index += 1
    return index
