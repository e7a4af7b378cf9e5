import unittest

from bad_tree import findings
import links

PAGE = "docs/oddities.md"
TEXT = ("# Oddities\n\n## The pointer throw\n\nText.\n\n"
        '<a id="plain"></a>\n\n```\n# not-a-heading\n```\n')


class Links(unittest.TestCase):
    def test_links_that_lead_somewhere_pass(self):
        self.assertEqual([], findings(links, {
            PAGE: TEXT,
            "README.md": "[a](docs/oddities.md) [b](docs/oddities.md#plain) [c](docs)\n"
                         "[d](https://example.org/none) [e](#here) `[f](none)`\n\n# Here\n",
            "docs/other.md": "[a](oddities.md#the-pointer-throw) [b](../README.md)\n",
            "cli/a.cpp": "// docs/oddities.md#the-pointer-throw\n"}))

    def test_a_missing_file_and_a_missing_anchor_are_found(self):
        self.assertEqual(
            ["README.md:1: 'docs/none.md': there is no docs/none.md",
             "README.md:2: 'docs/oddities.md#not-a-heading': docs/oddities.md has no"
             " #not-a-heading"],
            findings(links, {PAGE: TEXT,
                             "README.md": "[a](docs/none.md)\n"
                                          "[b](docs/oddities.md#not-a-heading)\n"}))

    def test_comments_are_followed_too(self):
        self.assertEqual(
            ["a.cpp:1: 'docs/oddities.md#gone': docs/oddities.md has no #gone",
             "a.cpp:2: 'irregularities.md#gone': there is no docs/irregularities.md"],
            findings(links, {PAGE: TEXT, "a.cpp": "// docs/oddities.md#gone\n"
                                                  "// Deliberate: irregularities.md#gone\n"}))


if __name__ == "__main__":
    unittest.main()
