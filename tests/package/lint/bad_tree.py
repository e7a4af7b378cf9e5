"""Feeds a check a small tree and returns what it found."""

import os
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.normpath(os.path.join(HERE, "..", "..", ".."))
sys.path.insert(0, os.path.join(ROOT, "scripts", "lint.d"))

from tree import Tree  # noqa: E402  (found through the path above)


def findings(check, files, executable=()):
    """The findings of `check` in a tree of `files`, as the lines of lint."""
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            file = os.path.join(root, path)
            os.makedirs(os.path.dirname(file), exist_ok=True)
            with open(file, "w", encoding="utf-8", newline="") as out:
                out.write(text)
            os.chmod(file, 0o755 if path in executable else 0o644)
        return sorted(f"{path}:{line}: {text}".replace(root + "/", "")
                      for path, line, text in check.check(Tree(root)))
