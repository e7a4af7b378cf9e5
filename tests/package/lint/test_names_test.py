import unittest

from bad_tree import findings
import test_names


class TestNames(unittest.TestCase):
    def test_a_sentence_passes(self):
        self.assertEqual([], findings(test_names, {
            "a_test.cpp": "TEST(Node,\n     AChildIsFreedOnce) {}\n"
                          "TEST_F(Log, ABadLengthIsIgnored) {}\n"}))

    def test_a_name_that_says_nothing_is_found(self):
        self.assertEqual(
            ["a_test.cpp:2: 'Test1_b': name the behaviour, in words without '_'",
             "a_test.cpp:3: 'parses': name the behaviour, in words without '_'"],
            findings(test_names, {"a_test.cpp": "TEST(Node,\n     Test1_b) {}\n"
                                                "TEST_P(Node, parses) {}\n"}))

    def test_a_name_given_twice_is_found(self):
        self.assertEqual(
            ["b_test.cpp:1: Node.IsEmptyAtFirst is the name of a test in a_test.cpp too"],
            findings(test_names, {"a_test.cpp": "TEST(Node, IsEmptyAtFirst) {}\n",
                                  "b_test.cpp": "TEST(Node, IsEmptyAtFirst) {}\n"}))


if __name__ == "__main__":
    unittest.main()
