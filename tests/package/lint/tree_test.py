import os
import pathlib
import subprocess
import tempfile
import unittest

from bad_tree import Tree


class TreeTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.write("a.cpp", "")
        self.write("build/b.cpp", "")

    def write(self, path, data):
        file = self.root / path
        file.parent.mkdir(exist_ok=True)
        file.write_bytes(data.encode() if isinstance(data, str) else data)

    def git(self, *arguments):
        subprocess.run(["git", *arguments], cwd=self.root, check=True)

    def test_without_git_everything_but_build_is_looked_at(self):
        self.assertEqual(["a.cpp"], Tree(str(self.root)).paths)

    def test_with_git_new_files_are_and_ignored_and_deleted_ones_are_not(self):
        self.write(".gitignore", "ignored\n")
        self.write("ignored", "")
        self.write("deleted", "")
        self.git("init", "--quiet")
        self.git("add", "deleted")
        os.remove(self.root / "deleted")
        self.assertEqual([".gitignore", "a.cpp", "build/b.cpp"],
                         Tree(str(self.root)).paths)

    def test_when_git_fails_everything_but_build_is_looked_at(self):
        self.write(".git", "gitdir: nowhere\n")
        self.assertEqual([".git", "a.cpp"], Tree(str(self.root)).paths)

    def test_a_file_is_told_by_its_name_or_its_first_line(self):
        for path, text, kind in [("a.h", "", "cpp"), ("CMakeLists.txt", "", "cmake"),
                                 ("a.md", "", "markdown"), ("a.json", "", "other"),
                                 ("run", "#!/usr/bin/env python3\n", "python"),
                                 ("start", "#!/bin/sh\n", "shell")]:
            with self.subTest(path=path):
                self.write(path, text)
                self.assertEqual(kind, Tree(str(self.root)).kind(path))

    def test_what_is_not_text_has_none(self):
        self.write("binary", b"a\0b")
        self.write("latin", b"\xe4")
        tree = Tree(str(self.root))
        self.assertEqual([None, None, ""], [tree.text(p) for p in
                                            ("binary", "latin", "a.cpp")])


if __name__ == "__main__":
    unittest.main()
