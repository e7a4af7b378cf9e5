#!/usr/bin/env python3
import unittest

from blocks import Block, blocks_of


class Blocks(unittest.TestCase):
    def test_blocks_come_in_order_with_their_languages(self):
        self.assertEqual(
            [Block(3, "sh", "", "", "one\ntwo\n"), Block(7, "", "", "", "")],
            blocks_of("Text\n```sh\none\ntwo\n```\n```\n```\n"))

    def test_a_remark_belongs_to_the_next_block_alone(self):
        self.assertEqual(
            [Block(4, "sh", "not run", "needs root", "x\n"), Block(7, "sh", "", "", "y\n")],
            blocks_of("<!-- not run: needs root -->\n\n```sh\nx\n```\n```sh\ny\n```"))

    def test_remarks_tell_what_they_are_about(self):
        self.assertEqual(
            [Block(3, "cpp", "part of", "a/b.cpp", ""), Block(6, "text", "output", "", "")],
            blocks_of("<!-- part of a/b.cpp -->\n```cpp\n```\n<!-- output -->\n```text\n```"))

    def test_what_is_not_understood_is_an_error(self):
        for text in ["```shell\n```", "  ```sh\n```", "```sh\n", "<!-- not rum: x -->",
                     "<!-- output -->\nText.\n```text\n```", "<!-- output -->\n"]:
            with self.subTest(text=text), self.assertRaises(ValueError):
                blocks_of(text)


if __name__ == "__main__":
    unittest.main()
