import tempfile
import unittest

import scripts  # noqa: F401  (for the path)
import draw
import explained

SOURCES = {"a.cpp": "void f() {\n    if (a < 1)\n        b();\n}\n", "b.h": "auto c = 7;\n"}


def all_of(seed):
    return list(draw.changes(SOURCES, seed))


class DrawTest(unittest.TestCase):
    def test_every_place_is_drawn_once(self):
        self.assertEqual([("a.cpp", 2, "comparison"), ("a.cpp", 2, "condition"),
                          ("a.cpp", 2, "number"), ("a.cpp", 3, "statement"),
                          ("b.h", 1, "number")],
                         sorted((c.path, c.line, c.mutator) for c in all_of(1)))

    def test_the_seed_decides_and_nothing_else(self):
        self.assertEqual(all_of(1), all_of(1))
        self.assertEqual(24, len({tuple(all_of(seed)) for seed in range(24)}))

    def test_a_change_tells_what_it_is_and_holds_the_whole_file(self):
        found = [c for c in all_of(1) if c.mutator == "statement"]
        self.assertEqual([draw.Change("a.cpp", 3, "statement", "b()", "", "b();",
                                      "void f() {\n    if (a < 1)\n        ;\n}\n")],
                         found)


class ExplainedTest(unittest.TestCase):
    def load(self, text):
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
            file.write(text)
            file.flush()
            return explained.load(file.name)

    def test_an_entry_is_found_by_what_is_changed(self):
        reasons = self.load("# A comment.\n\na.cpp\n    b();\n    'b()' -> ''\n"
                            "    Nobody knows\n    of it.\n\nb.h\nauto c = 7;\n"
                            "'7' -> '8'\nNor of this.\n")
        change, = [c for c in all_of(1) if c.mutator == "statement"]
        self.assertEqual("Nobody knows of it.", explained.reason(reasons, change))
        self.assertEqual([], explained.stale(reasons, draw.all_changes(SOURCES)))

    def test_an_entry_may_be_about_whatever_takes_the_place(self):
        reasons = self.load("b.h\nauto c = 7;\n'7' -> anything\nNobody looks.\n")
        found = [c.path for c in draw.all_changes(SOURCES)
                 if explained.reason(reasons, c) == "Nobody looks."]
        self.assertEqual(["b.h"] * 3, found)
        self.assertEqual([], explained.stale(reasons, draw.all_changes(SOURCES)))

    def test_an_entry_that_matches_no_place_is_stale(self):
        reasons = self.load("a.cpp\n    d();\n    'd()' -> ''\n    It was there once.\n")
        self.assertEqual([("a.cpp", "d();", "'d()'", "''")],
                         explained.stale(reasons, draw.all_changes(SOURCES)))

    def test_a_file_without_entries_explains_nothing(self):
        self.assertEqual({}, self.load("# A comment.\n"))


if __name__ == "__main__":
    unittest.main()
