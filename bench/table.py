"""The table: as text for a terminal, or as Markdown."""

HEADINGS = ("Subject", "Size", "Ours", "Peer", "Ratio", "Must reach", "Verdict")
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


def machine(results):
    facts = dict(results["machine"], rounds=str(results["rounds"]))
    return "\n".join(f"- {name}: {value}" for name, value in facts.items())
