import os
import sys
import tempfile
import time
import unittest
from unittest import mock

import scripts  # noqa: F401  (for the path)
import limited_run


class LimitedRunTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.log = os.path.join(self.folder, "log")

    def end_of(self, code, timeout=60):
        return limited_run.run([sys.executable, "-c", code], self.folder, timeout, self.log)

    def test_the_exit_status_tells(self):
        self.assertEqual("passed", self.end_of("print('well')"))
        with open(self.log, encoding="utf-8") as log:
            self.assertEqual("well\n", log.read())
        self.assertEqual("failed", self.end_of("raise SystemExit(3)"))
        self.assertEqual("failed", self.end_of("import os; os.abort()"))

    def test_what_does_not_end_is_ended(self):
        self.assertEqual("time", self.end_of("while True: pass", 0.5))

    def test_a_failure_with_much_memory_is_one_of_memory(self):
        with mock.patch.multiple(limited_run, MEMORY_LIMIT=256 << 20,
                                 MUCH_MEMORY=128 << 20):
            self.assertEqual("memory", self.end_of(
                "blocks = []\nwhile True: blocks.append(b'x' * (16 << 20))\n"))
            self.assertEqual("passed", self.end_of("block = b'x' * (160 << 20)\n"))

    def test_what_it_started_ends_with_it(self):
        code = ("import subprocess, sys\n"
                "child = subprocess.Popen([sys.executable, '-c', 'while True: pass'])\n"
                "print(child.pid)\n")
        self.assertEqual("passed", self.end_of(code))
        with open(self.log, encoding="utf-8") as log:
            child = int(log.read())
        deadline = time.monotonic() + 60
        while self.runs(child):
            self.assertLess(time.monotonic(), deadline)

    @staticmethod
    def runs(process):
        try:
            with open(f"/proc/{process}/stat", encoding="utf-8") as stat:
                return stat.read().rsplit(")", 1)[1].split()[0] not in "ZX"
        except FileNotFoundError:
            return False


if __name__ == "__main__":
    unittest.main()
