"""The files that lint looks at, and what a finding about one of them is."""

import os
import subprocess
from collections import namedtuple

# `line` counts from 1; 0 stands for the file as a whole.
Finding = namedtuple("Finding", "path line text")

CPP = (".h", ".cpp")
NOT_SOURCES = (".git", "build", "__pycache__")


class Tree:
    """A source tree: what git tracks and what it would, were it added."""

    def __init__(self, root):
        self.root = root
        self._texts = {}
        self.paths = sorted(p for p in self._list()
                            if os.path.isfile(self.file(p)))

    def file(self, path):
        return os.path.join(self.root, path)

    def text(self, path):
        """The text of a file; None for one that is not text."""
        if path not in self._texts:
            with open(self.file(path), "rb") as file:
                data = file.read()
            try:
                text = None if b"\0" in data else data.decode("utf-8")
            except UnicodeDecodeError:
                text = None
            self._texts[path] = text
        return self._texts[path]

    def lines(self, path):
        """Pairs of line number and line, of a text file."""
        return enumerate((self.text(path) or "").split("\n"), 1)

    def kind(self, path):
        """cpp, cmake, python, shell, markdown, or other."""
        name = os.path.basename(path)
        if path.endswith(CPP):
            return "cpp"
        if name == "CMakeLists.txt" or path.endswith(".cmake"):
            return "cmake"
        if path.endswith(".md"):
            return "markdown"
        first = (self.text(path) or "").split("\n", 1)[0]
        if path.endswith(".py") or first.startswith("#!") and "python" in first:
            return "python"
        if path.endswith(".sh") or first.startswith("#!") and "sh" in first:
            return "shell"
        return "other"

    def of_kind(self, *kinds):
        return [p for p in self.paths if self.kind(p) in kinds]

    def _list(self):
        if os.path.exists(self.file(".git")):
            listed = subprocess.run(
                ["git", "ls-files", "-z", "--cached", "--others",
                 "--exclude-standard"],
                cwd=self.root, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
            if listed.returncode == 0:
                return listed.stdout.decode("utf-8").split("\0")[:-1]
        # Not a clone, or one of another user, of which git says nothing.
        paths = []
        for folder, folders, names in os.walk(self.root):
            folders[:] = [f for f in folders if f not in NOT_SOURCES]
            paths += [os.path.relpath(os.path.join(folder, name), self.root)
                      for name in names]
        return paths
