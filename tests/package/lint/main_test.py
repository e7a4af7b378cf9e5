import contextlib
import io
import os
import pathlib
import tempfile
import unittest

import bad_tree  # noqa: F401  (finds main)
import main


def run(files):
    """What main writes about a tree of `files`, and its exit status."""
    out, err = io.StringIO(), io.StringIO()
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                file.write(text)
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
            status = main.main(root)
    return out.getvalue(), err.getvalue(), status


class Main(unittest.TestCase):
    def test_a_clean_tree_passes_in_silence(self):
        self.assertEqual(("", "", 0), run({"a.cmake": "set(a b)\n"}))

    def test_findings_of_all_checks_are_written_in_the_order_of_files(self):
        self.assertEqual(
            ("a.md:1: 'none.md': there is no none.md\n"
             "b.cmake: no line feed at the end of the file\n",
             "scripts/lint: 2 findings\n", 1),
            run({"b.cmake": "set(a b)", "a.md": "[a](none.md)\n"}))

    def test_every_check_of_the_folder_is_run_tidy_when_asked_for(self):
        modules = pathlib.Path(main.__file__).parent.glob("*.py")
        checks = {module.stem for module in modules
                  if "\ndef check(tree):" in module.read_text(encoding="utf-8")}
        self.assertEqual(checks, {check.__name__ for check in main.CHECKS + [main.tidy]})


if __name__ == "__main__":
    unittest.main()
