#include "cli/Utf8.h"

#include <gtest/gtest.h>

using ovmem::cli::isUtf8;
using namespace std::string_view_literals;

TEST(Utf8, TheEmptyTextIsUtf8) {
    EXPECT_TRUE(isUtf8(""));
}

TEST(Utf8, CharactersOfEveryLengthAreUtf8) {
    EXPECT_TRUE(isUtf8("a\0b\x7F"sv));
    EXPECT_TRUE(isUtf8("\xC2\x80 \xDF\xBF"));
    EXPECT_TRUE(isUtf8("\xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 \xEF\xBF\xBF"));
    EXPECT_TRUE(isUtf8("\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"));
}

TEST(Utf8, ALoneContinuationByteIsNot) {
    EXPECT_FALSE(isUtf8("a\x80"));
    EXPECT_FALSE(isUtf8("\xBF"));
}

TEST(Utf8, ACharacterCutShortIsNot) {
    EXPECT_FALSE(isUtf8("\xC3"));
    EXPECT_FALSE(isUtf8("\xE2\x82"));
    EXPECT_FALSE(isUtf8("\xF0\x9F\x98"));
    EXPECT_FALSE(isUtf8("\xE2\x82x"));
}

TEST(Utf8, AnOverlongFormIsNot) {
    EXPECT_FALSE(isUtf8("\xC0\x80"));
    EXPECT_FALSE(isUtf8("\xC1\xBF"));
    EXPECT_FALSE(isUtf8("\xE0\x9F\xBF"));
    EXPECT_FALSE(isUtf8("\xF0\x8F\xBF\xBF"));
}

TEST(Utf8, ASurrogateIsNot) {
    EXPECT_FALSE(isUtf8("\xED\xA0\x80"));
    EXPECT_FALSE(isUtf8("\xED\xBF\xBF"));
}

TEST(Utf8, WhatLiesAboveTheLastCharacterIsNot) {
    EXPECT_FALSE(isUtf8("\xF4\x90\x80\x80"));
    EXPECT_FALSE(isUtf8("\xF5\x80\x80\x80"));
    EXPECT_FALSE(isUtf8("\xFF"));
}
