import json
import os
import pathlib
import tempfile
import unittest
from unittest import mock

import bad_tree  # noqa: F401  (finds tidy)
import tidy
from tree import Tree

# Says what stands behind "TIDY " in the source, and notes that it was asked.
TOOL = """#!/bin/sh
echo "$4" >>asked
sed -n "s|^// TIDY |$PWD/$4:1:7: error: |p" "$4"
! grep -q '^// FAIL' "$4"
"""


class Tidy(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = os.path.realpath(folder.name)
        self.write("bin/clang-tidy-14", TOOL)
        os.chmod(os.path.join(self.root, "bin/clang-tidy-14"), 0o755)
        path = os.path.join(self.root, "bin") + ":" + os.environ["PATH"]
        patch = mock.patch.dict(os.environ, {"PATH": path})
        patch.start()
        self.addCleanup(patch.stop)
        self.write(".clang-tidy", "Checks: all\n")
        self.write("cli/A.h", "int a;\n")
        self.command("c++ A.cpp")

    def write(self, path, text):
        file = pathlib.Path(self.root, path)
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def command(self, text):
        self.write("build/dev/compile_commands.json", json.dumps(
            [{"file": os.path.join(self.root, "cli/A.cpp"), "command": text}]))

    def findings(self):
        return [tuple(f) for f in tidy.check(Tree(self.root))]

    def asked(self):
        file = pathlib.Path(self.root, "asked")
        said = file.read_text(encoding="utf-8").split() if file.exists() else []
        file.unlink(missing_ok=True)
        return said

    def test_what_the_tool_says_is_a_finding_each_time_until_it_is_gone(self):
        self.write("cli/A.cpp", "// TIDY use nullptr [use-nullptr,-warnings-as-errors]\n")
        for _ in range(2):
            self.assertEqual([("cli/A.cpp", 1, "use nullptr [use-nullptr]")],
                             self.findings())
        self.write("cli/A.cpp", "int a;\n")
        self.assertEqual([], self.findings())

    def test_the_tool_is_given_the_command_without_precompiled_headers(self):
        self.write("cli/A.cpp", "int a;\n")
        self.command("c++ -Wall -Winvalid-pch -include /b/one.dir/cmake_pch.hxx -o A.o -c A.cpp")
        self.assertEqual([], self.findings())
        with open(f"{self.root}/build/dev/tidy/compile_commands.json", encoding="utf-8") as given:
            self.assertEqual("c++ -Wall -o A.o -c A.cpp", json.load(given)[0]["command"])

    def test_a_clean_source_is_looked_at_again_only_after_a_change(self):
        self.write("cli/A.cpp", "int a;\n")
        self.findings()
        self.assertEqual(["cli/A.cpp"], self.asked())
        self.findings()
        self.assertEqual([], self.asked())
        for change in (lambda: self.write("cli/A.cpp", "int b;\n"),
                       lambda: self.write("cli/A.h", "int b;\n"),
                       lambda: self.write(".clang-tidy", "Checks: none\n"),
                       lambda: self.command("c++ -O2 A.cpp")):
            change()
            self.findings()
            self.assertEqual(["cli/A.cpp"], self.asked())

    def test_a_source_that_nothing_compiles_is_a_finding(self):
        self.write("cli/A.cpp", "int a;\n")
        self.write("emulator/B.cpp", "int b;\n")
        self.write("tests/C.cpp", "int c;\n")
        self.assertEqual([("emulator/B.cpp", 0, "no target of build/dev compiles it")],
                         self.findings())

    def test_a_tool_that_fails_without_a_finding_is_one(self):
        self.write("cli/A.cpp", "// FAIL\n")
        self.assertEqual([("cli/A.cpp", 0, "clang-tidy-14 fails: ")], self.findings())


if __name__ == "__main__":
    unittest.main()
