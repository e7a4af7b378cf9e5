import json
import os
import subprocess
import sys
import tempfile
import unittest

REPORT = os.path.join(os.path.dirname(os.path.abspath(__file__)),
                      "../../../scripts/coverage.d/report.py")
SOURCE = "int one() {\n    if (two())\n        three();\n    while (four() && five())\n}\n"
OTHERS = "emulator/ lines: 0 of 0 (100.0 %)\ncli/ lines: 0 of 0 (100.0 %)\n"


def line(number, count, **more):
    return {"line_number": number, "count": count, "branches": [], **more}


def conditional(true, false):
    return {"gcovr/decision": {"type": "conditional", "count_true": true,
                               "count_false": false}}


def uncheckable(*counts):
    return {"gcovr/decision": {"type": "uncheckable"},
            "branches": [{"count": count} for count in counts]}


class Report(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        for folder in ("OvMemCppBinding", "cli"):
            os.mkdir(os.path.join(self.folder, folder))
            self.write(folder + "/a.cpp", SOURCE)

    def write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(text)

    def report(self, lines, exceptions="", folder="OvMemCppBinding"):
        """The exit status, and what was printed."""
        self.write("coverage.json", json.dumps({"files": [{"file": folder + "/a.cpp",
                                                           "lines": lines}]}))
        self.write("exceptions.txt", exceptions)
        done = subprocess.run([sys.executable, REPORT, "coverage.json", "exceptions.txt"],
                              cwd=self.folder, check=False, capture_output=True, text=True)
        self.assertEqual("", done.stderr)
        return done.returncode, done.stdout.replace(OTHERS, "")

    def test_all_run_is_all_there_is_to_say(self):
        self.assertEqual(
            (0, "lines: 3 of 3 (100.0 %)\ndecisions: 2 of 2 (100.0 %)\n"),
            self.report([line(1, 5), line(2, 5, **conditional(2, 3)),
                         line(4, 1, **uncheckable(1, 2, 3))]))

    def test_a_line_that_is_not_run_is_named(self):
        self.assertEqual(
            (1, "lines: 1 of 2 (50.0 %)\n"
                "  OvMemCppBinding/a.cpp:3: three();\n"
                "    NOT RUN: write its test, or its reason in exceptions.txt\n"
                "decisions: 0 of 0 (100.0 %)\n"),
            self.report([line(1, 5), line(3, 0)]))

    def test_a_decision_that_goes_one_way_is_named(self):
        self.assertEqual(
            (1, "lines: 2 of 2 (100.0 %)\n"
                "decisions: 0 of 2 (0.0 %)\n"
                "  OvMemCppBinding/a.cpp:2: if (two())\n"
                "    NOT RUN: write its test, or its reason in exceptions.txt\n"
                "  OvMemCppBinding/a.cpp:4: while (four() && five())\n"
                "    NOT RUN: write its test, or its reason in exceptions.txt\n"),
            self.report([line(2, 5, **conditional(5, 0)),
                         line(4, 1, **uncheckable(1, 0, 3))]))

    def test_what_is_no_code_does_not_count(self):
        self.assertEqual(
            (0, "lines: 0 of 0 (100.0 %)\ndecisions: 0 of 0 (100.0 %)\n"),
            self.report([line(5, 0, **{"gcovr/noncode": True})]))

    def test_a_reason_takes_the_place_of_a_test(self):
        self.assertEqual(
            (0, "lines: 0 of 1 (0.0 %)\n"
                "  OvMemCppBinding/a.cpp:3: three();\n"
                "    Needs the impossible, twice.\n"
                "decisions: 0 of 0 (100.0 %)\n"),
            self.report([line(3, 0)], "# Why\n\nOvMemCppBinding/a.cpp\n    three();\n"
                                      "    Needs the impossible,\n    twice.\n"))

    def test_an_exception_that_is_none_is_to_go(self):
        self.assertEqual(
            (1, "lines: 1 of 1 (100.0 %)\ndecisions: 0 of 0 (100.0 %)\n"
                "exceptions.txt: 'three();' of OvMemCppBinding/a.cpp is run; take it out\n"),
            self.report([line(3, 1)], "OvMemCppBinding/a.cpp\n    three();\n    Reason.\n"))

    def test_of_the_tool_most_lines_are_enough_and_decisions_do_not_count(self):
        library = "lines: 0 of 0 (100.0 %)\ndecisions: 0 of 0 (100.0 %)\n"
        many = [line(1, 5, **conditional(1, 0))] * 97
        self.assertEqual(
            (0, library + "emulator/ lines: 0 of 0 (100.0 %)\n"
                "cli/ lines: 98 of 99 (99.0 %)\n"
                "  cli/a.cpp:3: three();\n"),
            self.report([*many, line(2, 1), line(3, 0)], folder="cli"))
        self.assertEqual(
            (1, library + "emulator/ lines: 0 of 0 (100.0 %)\n"
                "cli/ lines: 40 of 42 (95.2 %)\n"
                "  cli/a.cpp:2: if (two())\n"
                "  cli/a.cpp:3: three();\n"
                "  TOO FEW: at least 98 % are wanted; write their tests\n"),
            self.report([*many[:40], line(2, 0), line(3, 0)], folder="cli"))


if __name__ == "__main__":
    unittest.main()
