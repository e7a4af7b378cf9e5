import unittest

from bad_tree import findings
import references

# Each forbidden text is written in two halves, so that this file passes.
FORBIDDEN = [
    ("specificat" + "ion", "say what holds, not who asked for it"),
    ("Specificat" + "ions", "say what holds, not who asked for it"),
    ("Part " + "1.3", "not in the repository"),
    ("issue " + "#7", "name the matter, not its number"),
    ("/work" + "/m", "a folder of one machine"),
    ("/home" + "/m", "a folder of one machine"),
]


class References(unittest.TestCase):
    def test_each_forbidden_text_is_found_with_its_line_and_reason(self):
        for text, why in FORBIDDEN:
            with self.subTest(text=text):
                self.assertEqual([f"a.md:2: '{text}': {why}"],
                                 findings(references, {"a.md": f"one\nsee {text}\n"}))

    def test_what_only_resembles_a_forbidden_text_passes(self):
        for text in ["the XML specificat" + "ion", "a partial specialization",
                     "Par" + "t of 1.3", "${HOME}/ho" + "me/x", "build/wo" + "rk/x",
                     "&#9;"]:
            with self.subTest(text=text):
                self.assertEqual([], findings(references, {"a.md": text + "\n"}))


if __name__ == "__main__":
    unittest.main()
