"""The table: as text for a terminal, as Markdown, and in a document."""

HEADINGS = ("Subject", "Size", "Ours", "Peer", "Ratio", "Must reach", "Verdict")
BEGIN = "<!-- what scripts/bench --update writes begins here -->\n"
END = "<!-- and ends here -->\n"
VERDICTS = {None: "-", True: "met", False: "missed"}


def _cells(line):
    return line[:-1] + (VERDICTS[line.met],)


def text(lines):
    cells = [HEADINGS] + [_cells(line) for line in lines]
    widths = [max(len(row[i]) for row in cells) for i in range(len(HEADINGS))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip()
                     for row in cells)


def markdown(lines):
    rows = [HEADINGS, ("---",) * len(HEADINGS)] + [_cells(line) for line in lines]
    return "\n".join("| " + " | ".join(row) + " |" for row in rows)


def whole(results, lines, form):
    """On what was measured, the table, and how many figures are met."""
    facts = dict(results["machine"], rounds=str(results["rounds"]))
    machine = "\n".join(f"- {name}: {value}" for name, value in facts.items())
    must = sum(line.met is not None for line in lines)
    met = sum(line.met is True for line in lines)
    return f"{machine}\n\n{form(lines)}\n\n{met} of {must} figures met."


def replace(path, written):
    """Puts `written` between the two marks of the file."""
    with open(path, encoding="utf-8") as file:
        before, rest = file.read().split(BEGIN)
    after = rest.split(END)[1]
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{before}{BEGIN}\n{written}\n\n{END}{after}")
