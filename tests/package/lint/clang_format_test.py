import unittest

from bad_tree import findings
import clang_format

STYLE = {".clang-format": "BasedOnStyle: Google\n"}


class ClangFormat(unittest.TestCase):
    def test_a_formatted_file_passes(self):
        self.assertEqual([], findings(clang_format, {**STYLE, "a.cpp": "int a;\n"}))

    def test_a_file_is_found_once_at_its_first_place(self):
        self.assertEqual(
            ["cli/a.cpp:2: not formatted; run 'clang-format-14 -i cli/a.cpp'"],
            findings(clang_format, {**STYLE, "cli/a.cpp": "int a;\nint  b;\nint  c;\n"}))

    def test_a_broken_style_is_reported(self):
        found = findings(clang_format, {".clang-format": "None: 1\n", "a.cpp": "int a;\n"})
        self.assertEqual(1, len(found))
        self.assertRegex(found[0], "unknown key 'None'")


if __name__ == "__main__":
    unittest.main()
