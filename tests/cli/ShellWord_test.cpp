#include "cli/ShellWord.h"

#include <gtest/gtest.h>

using namespace ovmem::cli;

TEST(ShellWord, APathOfPlainCharactersStaysAsItIs) {
    EXPECT_EQ(shellWord("/srv/.local/x-1_2+3"), "/srv/.local/x-1_2+3");
}

TEST(ShellWord, SpacesAndApostrophesAreQuoted) {
    EXPECT_EQ(shellWord(""), "''");
    EXPECT_EQ(shellWord("/my files/x"), "'/my files/x'");
    EXPECT_EQ(shellWord("it's; $HOME"), "'it'\\''s; $HOME'");
}

TEST(ShellWord, WhatSteersATerminalAndTheBackslashAreEscaped) {
    EXPECT_EQ(shellWord("a\nb'\\"), "$'a\\x0ab\\'\\\\'");
    EXPECT_EQ(shellWord("a\x1B[2J\xFF"), "$'a\\x1b[2J\\xff'");
}
