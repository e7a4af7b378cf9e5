#include "tests/support/Quoted.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace OvMemTest {

TEST(Quoted, EveryByteHasASpellingOfItsOwn) {
    EXPECT_EQ(inQuotes(""), R"("")");
    EXPECT_EQ(inQuotes("a \"b\" \\ c'"), R"("a \"b\" \\ c'")");
    EXPECT_EQ(inQuotes("\r\n\t"), R"("\r\n\x09")");
    EXPECT_EQ(inQuotes(std::string("\0\x7F\x80\xFF~", 5)),
              R"("\x00\x7f\x80\xff~")");
}

TEST(Quoted, WhatIsInQuotesComesBack) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string bytes(3, static_cast<char>(byte));
        const std::string spelling = inQuotes(bytes) + "rest";
        std::string_view text = spelling;
        EXPECT_EQ(takeQuoted(text), bytes);
        EXPECT_EQ(text, "rest");
    }
}

TEST(Quoted, ABadSpellingIsRefused) {
    for (std::string_view text :
         {"", "a", "\"", "\"a", "\"\\", "\"\\q\"", "\"\\x1\"", "\"\\xG0\""}) {
        EXPECT_THROW(takeQuoted(text), std::invalid_argument);
    }
}

}  // namespace OvMemTest
