#include "cli/Utf8.h"

#include <gtest/gtest.h>

using ovmem::cli::firstCharacter;
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

TEST(Utf8, TheFirstCharacterIsDecoded) {
    const struct {
        std::string_view bytes;
        std::size_t length;
        char32_t code;
    } characters[] = {
        {"\0a"sv, 1, 0},
        {"\x7F", 1, 0x7F},
        {"\u0080a", 2, 0x80},
        {"\u07FF", 2, 0x7FF},
        {"\u0800a", 3, 0x800},
        {"\uFFFF", 3, 0xFFFF},
        {"\u5A5A", 3, 0x5A5A},
        {"\U00010000a", 4, 0x10000},
        {"\U000AAAAA", 4, 0xAAAAA},
        {"\U0010FFFF", 4, 0x10FFFF},
    };
    for (const auto& character : characters) {
        const auto found = firstCharacter(character.bytes);
        EXPECT_EQ(found.length, character.length);
        EXPECT_EQ(found.code, character.code);
    }
}

TEST(Utf8, BytesThatAreNoCharacterHaveNoLength) {
    for (const auto bytes : {"\x80", "\xC3", "\xF7\xBF\xBF\xBF"}) {
        EXPECT_EQ(firstCharacter(bytes).length, 0u);
        EXPECT_EQ(firstCharacter(bytes).code, 0u);
    }
}
