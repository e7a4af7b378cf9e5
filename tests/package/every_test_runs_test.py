import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = os.path.join(os.path.dirname(os.path.abspath(__file__)), "every_test_runs.py")

# A program of three tests, of which a filter may select those of a suite.
PROGRAM = """#!/bin/sh
case "$2" in
  --gtest_filter=A*) printf 'A.\\n  One\\n  Two\\n' ;;
  *) printf 'A.\\n  One\\n  Two\\nAll/B.\\n  Three/0  # GetParam() = 7\\n' ;;
esac
"""


class EveryTestRuns(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = os.path.realpath(folder.name)
        self.write("build/bin/program", PROGRAM)
        os.chmod(os.path.join(self.root, "build/bin/program"), 0o755)
        self.write("source/tests/A_test.cpp", "")
        self.write("source/tests/notes.txt", "")
        self.compiled = {"A_test.cpp": "program"}
        self.entries = ['"{root}/build/bin/program" "--gtest_filter=A.*"',
                        '"{root}/build/bin/program" "--gtest_filter=*/B.*"']

    def write(self, path, text):
        file = pathlib.Path(self.root, path)
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def found(self):
        self.write("build/compile_commands.json", json.dumps(
            [{"file": os.path.join(self.root, "source/tests", name),
              "command": f"c++ -o tests/CMakeFiles/{target}.dir/{name}.o -c {name}"}
             for name, target in self.compiled.items()]))
        self.write("build/CTestTestfile.cmake", "".join(
            f"add_test(entry{number} {entry.format(root=self.root)})\n"
            for number, entry in enumerate(self.entries)))
        done = subprocess.run([sys.executable, CHECK, f"{self.root}/source",
                               f"{self.root}/build"], text=True, capture_output=True,
                              check=False)
        self.assertEqual("", done.stderr)
        return done.returncode, done.stdout

    def test_a_tree_of_which_every_test_runs_passes_in_silence(self):
        self.assertEqual((0, ""), self.found())

    def test_a_suite_that_no_list_names_is_an_error(self):
        self.entries.pop()
        self.assertEqual((1, "program: no entry of CTest selects All/B.Three/0\n"),
                         self.found())

    def test_a_test_or_a_suite_that_is_disabled_is_an_error(self):
        for listed, name in [("A.\\n  DISABLED_One\\n", "A.DISABLED_One"),
                             ("DISABLED_A.\\n  One\\n", "DISABLED_A.One"),
                             ("All/DISABLED_B.\\n  One/0\\n", "All/DISABLED_B.One/0"),
                             ("All/B.\\n  DISABLED_One/0\\n", "All/B.DISABLED_One/0")]:
            with self.subTest(name):
                self.write("build/bin/program", f"#!/bin/sh\nprintf '{listed}'\n")
                self.assertEqual((1, f"program: {name} is disabled and never runs\n"),
                                 self.found())

    def test_a_name_that_only_holds_the_word_is_none(self):
        self.write("build/bin/program",
                   "#!/bin/sh\nprintf 'A.\\n  IsDISABLED_Now\\n'\n")
        self.assertEqual((0, ""), self.found())

    def test_a_source_that_no_program_is_built_from_is_an_error(self):
        self.write("source/tests/deeper/C_test.cpp", "")
        self.assertEqual((1, "tests/deeper/C_test.cpp: no program is built from it\n"),
                         self.found())

    def test_a_source_that_is_compiled_with_others_is_of_their_program(self):
        batch = f"{self.root}/build/Unity/unity_0_cxx.cxx"
        sources = [f"{self.root}/source/tests/{name}_test.cpp" for name in "AC"]
        for source in sources:
            self.write(source, "")
        self.write(batch, "".join(f'#include "{source}"\n\n' for source in sources))
        self.compiled = {batch: "program"}
        self.assertEqual((0, ""), self.found())
        self.compiled = {batch: "other"}
        self.assertEqual(
            (1, "".join(f"tests/{name}_test.cpp: no entry of CTest starts its program other\n"
                        for name in "AC")), self.found())

    def test_a_program_that_no_entry_starts_is_an_error(self):
        self.write("source/tests/D_test.cpp", "")
        self.compiled["D_test.cpp"] = "other"
        self.assertEqual(
            (1, "tests/D_test.cpp: no entry of CTest starts its program other\n"),
            self.found())

    def test_a_script_that_no_entry_starts_is_an_error(self):
        self.write("source/tests/e_test.sh", "")
        self.assertEqual((1, "tests/e_test.sh: no entry of CTest starts it\n"), self.found())
        self.entries.append('bash "{root}/source/tests/e_test.sh"')
        self.assertEqual((0, ""), self.found())


if __name__ == "__main__":
    unittest.main()
