import unittest

from bad_tree import findings
import layout


class Layout(unittest.TestCase):
    def test_a_file_of_500_lines_passes_and_one_more_does_not(self):
        self.assertEqual([], findings(layout, {"cli/a.cpp": "x\n" * 500}))
        self.assertEqual(["cli/a.cpp:0: 501 lines; split it, 500 is the limit"],
                         findings(layout, {"cli/a.cpp": "x\n" * 501}))

    def test_the_library_has_80_columns(self):
        path = "OvMemCppBinding/util/A.h"
        self.assertEqual([], findings(layout, {path: "x" * 80 + "\n"}))
        self.assertEqual([f"{path}:2: 81 columns; the limit is 80"],
                         findings(layout, {path: "\n" + "x" * 81 + "\n"}))

    def test_other_sources_have_100_columns_and_documents_120(self):
        self.assertEqual(["tests/a.cmake:1: 101 columns; the limit is 100"],
                         findings(layout, {"tests/a.cmake": "x" * 101 + "\n"}))
        self.assertEqual(["README.md:1: 121 columns; the limit is 120"],
                         findings(layout, {"README.md": "x" * 121 + "\n"}))

    def test_a_column_is_a_character_not_a_byte(self):
        self.assertEqual([], findings(layout, {"tests/a.cpp": "\u00e9" * 100 + "\n"}))

    def test_a_table_row_may_be_long(self):
        self.assertEqual([], findings(layout, {"README.md": "| " + "x" * 200 + " |\n"}))

    def test_white_space_tabs_and_a_missing_line_feed_are_found(self):
        self.assertEqual(["a.cmake:0: no line feed at the end of the file",
                          "a.cmake:1: white space at the end of the line",
                          "a.cmake:2: a tab; indent with blanks"],
                         findings(layout, {"a.cmake": "set(a) \n\tset(b)"}))

    def test_data_is_left_alone(self):
        self.assertEqual([], findings(layout, {"tests/data/reply.xml": "a \n\tb"}))


if __name__ == "__main__":
    unittest.main()
