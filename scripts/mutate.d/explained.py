"""Changes of which it is known why no test notices them."""

import os

FILE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "explained.txt")


def load(file=FILE, folder=""):
    """{(path, source line, old, new): reason}, of the paths in the folder"""
    with open(file, encoding="utf-8") as opened:
        lines = [l.rstrip() for l in opened if not l.startswith("#")]
    reasons = {}
    for block in "\n".join(lines).strip().split("\n\n"):
        if block.strip():
            head, source, change, *reason = block.strip().split("\n")
            old, new = change.strip().split(" -> ")
            reasons[head.strip(), source.strip(), old, new] = \
                " ".join(r.strip() for r in reason)
    return {key: why for key, why in reasons.items() if key[0].startswith(folder)}


def reason(reasons, change):
    """Why no test notices the change; None if that is not known."""
    return next((reasons[k] for k in _keys(change) if k in reasons), None)


def stale(reasons, all_changes):
    return sorted(set(reasons) - {k for c in all_changes for k in _keys(c)})


def _keys(change):
    place = change.path, change.source, f"'{change.old}'"
    return place + (f"'{change.new}'",), place + ("anything",)
