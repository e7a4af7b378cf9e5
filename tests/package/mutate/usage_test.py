import os
import subprocess
import unittest

from scripts import ROOT

MUTATE = os.path.join(ROOT, "scripts", "mutate")


def start(*arguments):
    done = subprocess.run([MUTATE, *arguments], text=True, capture_output=True,
                          check=False)
    return done.returncode, done.stdout, done.stderr


class UsageTest(unittest.TestCase):
    def test_help_is_an_answer(self):
        status, said, complained = start("--help")
        self.assertEqual((0, ""), (status, complained))
        self.assertTrue(said.startswith(
            "Usage: scripts/mutate [--of library|emulator|cli] [N] [SEED]\n"))

    def test_other_arguments_are_answered_with_the_usage(self):
        usage = start("--help")[1]
        for arguments in (["0"], ["-1"], ["many"], [""], ["1", "x"], ["1", ""],
                          ["1", "2", "3"],
                          ["--of"], ["--of", "tests"], ["--of", "cli", "0"]):
            with self.subTest(arguments=arguments):
                self.assertEqual((2, "", usage), start(*arguments))


if __name__ == "__main__":
    unittest.main()
