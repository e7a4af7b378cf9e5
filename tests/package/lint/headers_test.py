import unittest

from bad_tree import findings
import headers

HEADER = "#ifndef CLI_A_H\n#define CLI_A_H\n#endif\n"


class Headers(unittest.TestCase):
    def test_a_guard_bears_the_path(self):
        self.assertEqual([], findings(headers, {"cli/A.h": "// A.\n" + HEADER}))
        for text in ["#ifndef A_H\n#define A_H\n#endif\n", "#pragma once\n", ""]:
            with self.subTest(text=text):
                self.assertEqual(["cli/A.h:1: begin with the include guard CLI_A_H"],
                                 findings(headers, {"cli/A.h": text}))

    def test_a_header_has_no_anonymous_namespace(self):
        text = HEADER.replace("#endif", "  namespace {\n}\nnamespace a {\n}\n#endif")
        self.assertEqual(["cli/A.h:3: no anonymous namespace in a header"],
                         findings(headers, {"cli/A.h": text, "cli/B.cpp": "namespace {\n}\n"}))

    def test_a_quoted_include_is_a_path_from_the_root(self):
        self.assertEqual(["cli/B.cpp:1: 'A.h': no such file; write the path from the root"],
                         findings(headers, {"cli/A.h": HEADER,
                                            "cli/B.cpp": '#include "A.h"\n'}))

    def test_the_own_header_comes_first(self):
        late = '#include <string>\n#include "cli/A.h"\n'
        for path in ["cli/A.cpp", "cli/A_test.cpp"]:
            with self.subTest(path=path):
                self.assertEqual([f'{path}:1: include the own header first: "cli/A.h"'],
                                 findings(headers, {"cli/A.h": HEADER, path: late}))


if __name__ == "__main__":
    unittest.main()
