import json
import os
import pathlib
import tempfile
import unittest
from unittest import mock

import bad_tree  # noqa: F401  (finds tidy)
import tidy
from tree import Tree

# Says what stands behind "TIDY " in the source and in what it includes, and notes
# that it was asked. Two sources with "ALONE" are too much for it.
TOOL = """#!/bin/sh
echo "$4" >>asked
files="$PWD/$4 $(sed -n 's|^#include "\\(.*\\.cpp\\)"$|\\1|p' "$4")"
for file in $files; do sed -n "s|^// TIDY |$file:1:7: error: |p" "$file"; done
[ $(cat $files | grep -c '^// ALONE') -lt 2 ] && ! cat $files | grep -q '^// FAIL'
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
        self.commands({"cli/A.cpp": text})

    def commands(self, texts):
        self.write("build/dev/compile_commands.json", json.dumps(
            [{"file": os.path.join(self.root, path), "command": text}
             for path, text in texts.items()]))

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

    def compiled(self, folder, names):
        """Sources of a folder, all with the same command."""
        paths = [f"{folder}/{name}.cpp" for name in names]
        for path in paths:
            self.write(path, f"int {os.path.basename(path)[0]};\n")
        self.commands({p: f"c++ -o {p}.o -c {self.root}/{p}" for p in paths})
        return paths

    def test_eight_sources_of_a_folder_are_looked_at_together(self):
        self.compiled("emulator/store", "ABCDEFGHI")
        self.assertEqual([], self.findings())
        self.assertEqual(["build/dev/tidy/emulator_store_A.cpp", "emulator/store/I.cpp"],
                         self.asked())
        with open(f"{self.root}/build/dev/tidy/emulator_store_A.cpp", encoding="utf-8") as one:
            self.assertEqual([f'#include "{self.root}/emulator/store/{name}.cpp"\n'
                              for name in "ABCDEFGH"], list(one))
        with open(f"{self.root}/build/dev/tidy/compile_commands.json", encoding="utf-8") as given:
            command = {one["file"]: one["command"] for one in json.load(given)}
        batch = f"{self.root}/build/dev/tidy/emulator_store_A.cpp"
        self.assertEqual(f"c++ -o emulator/store/A.cpp.o -c {batch}", command[batch])

    def test_only_sources_with_the_same_command_are_looked_at_together(self):
        self.compiled("cli", "AB")
        self.commands({"cli/A.cpp": "c++ -c A.cpp", "cli/B.cpp": "c++ -O2 -c B.cpp"})
        self.assertEqual([], self.findings())
        self.assertEqual(["cli/A.cpp", "cli/B.cpp"], sorted(self.asked()))

    def test_a_finding_among_several_sources_is_that_of_its_source(self):
        self.compiled("cli", "ABC")
        self.write("cli/B.cpp", "// TIDY use nullptr [use-nullptr,-warnings-as-errors]\n")
        for _ in range(2):
            self.assertEqual([("cli/B.cpp", 1, "use nullptr [use-nullptr]")],
                             self.findings())

    def test_sources_that_do_not_go_together_are_looked_at_one_by_one(self):
        paths = self.compiled("cli", "ABC")
        self.write("cli/A.cpp", "// ALONE\n")
        self.write("cli/B.cpp", "// ALONE\n")
        self.assertEqual([], self.findings())
        self.assertEqual(["build/dev/tidy/cli_A.cpp", *paths], self.asked())
        self.assertEqual([], self.findings())
        self.assertEqual([], self.asked())

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
