import os
import tempfile
import unittest

import scripts  # noqa: F401  (for the path)
from entries import Entry, entries, ordered
from parts import PARTS

LISTED = """
add_test([=[ovmem.util.A]=] "{build}/bin/a" "--gtest_filter=A.*:A/*" "--gtest_brief=0")
set_tests_properties([=[ovmem.util.A]=] PROPERTIES LABELS "unit;process")
add_test(ovmem.cli.B "{build}/bin/b")
set_tests_properties(ovmem.cli.B PROPERTIES LABELS "cli")
add_test(ovmem.support.C "{build}/bin/c")
set_tests_properties(ovmem.support.C PROPERTIES LABELS "unit")
add_test(ovmem.wire.d "{build}/bin/play" "/cases/d.txt")
set_tests_properties(ovmem.wire.d PROPERTIES LABELS "unit")
add_test(ovmem.faults.FaultMatrix "{build}/bin/f" "--gtest_filter=F.*")
set_tests_properties(ovmem.faults.FaultMatrix PROPERTIES LABELS "faults")
"""


class EntriesTest(unittest.TestCase):
    def test_they_are_those_of_the_parts_labels_and_some_more_built_or_not(self):
        with tempfile.TemporaryDirectory() as build:
            with open(os.path.join(build, "CTestTestfile.cmake"), "w",
                      encoding="utf-8") as file:
                file.write(LISTED.format(build=build))
            quick = ["--gtest_fail_fast", "--gtest_brief=1"]
            self.assertEqual(
                [Entry("ovmem.util.A", "bin/a",
                       [f"{build}/bin/a", "--gtest_filter=A.*:A/*", "--gtest_brief=0",
                        *quick]),
                 Entry("ovmem.wire.d", "bin/play", [f"{build}/bin/play", "/cases/d.txt"]),
                 Entry("ovmem.faults.FaultMatrix", "bin/f",
                       [f"{build}/bin/f", "--gtest_filter=F.*", *quick])],
                entries(build, PARTS["library"]))
            self.assertEqual([Entry("ovmem.cli.B", "bin/b", [f"{build}/bin/b"])],
                             entries(build, PARTS["cli"]))


class OrderTest(unittest.TestCase):
    def test_those_of_the_class_come_first_and_the_slow_ones_last(self):
        names = ["faults.FaultMatrix", "wire.a", "client.B", "util.C", "util.AndMore",
                 "util.And"]
        found = self.order(names, "OvMemCppBinding/util/And.cpp", "library")
        self.assertEqual(list(reversed(names)), found)

    def test_of_the_same_chances_the_quick_one_comes_first(self):
        self.assertEqual(["cli.A", "cli.B", "cli.C"],
                         self.order(["cli.C", "cli.B", "cli.A"], "cli/A.h", "cli"))

    @staticmethod
    def order(names, path, part):
        """The names as they are run, when each takes longer than the one behind it."""
        found = [Entry("ovmem." + n, "", []) for n in names]
        seconds = {e.name: -place for place, e in enumerate(found)}
        return [e.name[6:] for e in ordered(found, path, PARTS[part], seconds)]


if __name__ == "__main__":
    unittest.main()
