import unittest

from bad_tree import findings
import scripts


class Scripts(unittest.TestCase):
    def test_a_good_script_passes(self):
        self.assertEqual([], findings(scripts, {"a": "#!/bin/bash\nset -eu\n",
                                                "b.py": "print(1)\n"}, ["a"]))

    def test_a_script_that_cannot_be_started_is_found(self):
        self.assertEqual(["a:0: has a '#!' line but is not executable"],
                         findings(scripts, {"a": "#!/bin/bash\nset -e\n"}))

    def test_a_module_that_looks_like_a_program_is_found(self):
        self.assertEqual(["a.py:0: is executable but has no '#!' line"],
                         findings(scripts, {"a.py": "print(1)\n"}, ["a.py"]))

    def test_a_syntax_error_is_found(self):
        self.assertEqual(
            ["a:0: a: line 4: syntax error: unexpected end of file"],
            findings(scripts, {"a": "#!/bin/bash\nset -e\nif true; then\n"}, ["a"]))
        self.assertEqual(["a.py:1: invalid syntax"],
                         findings(scripts, {"a.py": "def :\n"}))

    def test_a_shell_script_that_goes_on_after_a_failure_is_found(self):
        self.assertEqual(["a:0: does not 'set -e': a failing command would pass"],
                         findings(scripts, {"a": "#!/bin/bash\nls\n"}, ["a"]))


if __name__ == "__main__":
    unittest.main()
