import unittest

from bad_tree import findings
import documents

TESTS = "TEST(Node, IsEmptyAtFirst) {}\nTEST_P(Last, IsChosen) {}\n"
TITLE = "# What is odd\n\n## Nodes\n\n"


class Documents(unittest.TestCase):
    def test_a_program_shown_as_it_is_passes(self):
        self.assertEqual([], findings(documents, {
            "examples/first_program.cpp": "int main() {}\n",
            "README.md": "So:\n\n```cpp\nint main() {}\n```\n"}))

    def test_a_program_shown_otherwise_is_found(self):
        self.assertEqual(
            ["README.md:0: does not show examples/first_program.cpp as it is; "
             "copy it there"],
            findings(documents, {
                "examples/first_program.cpp": "int main() {}\n",
                "README.md": "So:\n\n```cpp\nint main() { }\n```\n"}))

    def test_oddities_whose_tests_exist_pass(self):
        self.assertEqual([], findings(documents, {
            "a_test.cpp": TESTS,
            "docs/irregularities.md": TITLE +
            "### Empty\nTest: `Node.IsEmptyAtFirst`,\n`All/Last.IsChosen`\n"}))

    def test_a_test_that_does_not_exist_is_found(self):
        self.assertEqual(
            ["docs/irregularities.md:6: there is no test Node.IsFullAtFirst"],
            findings(documents, {
                "a_test.cpp": TESTS,
                "docs/irregularities.md": TITLE +
                "### Empty\nTest: `Node.IsFullAtFirst`\n"}))

    def test_an_oddity_without_a_test_is_found(self):
        self.assertEqual(
            ["docs/irregularities.md:5: 'Empty' names no test",
             "docs/irregularities.md:7: 'Last' names no test"],
            findings(documents, {
                "a_test.cpp": TESTS,
                "docs/irregularities.md": TITLE +
                "### Empty\nText.\n### Last\nText.\n"}))


if __name__ == "__main__":
    unittest.main()
