#include "cli/TerminalText.h"

#include <gtest/gtest.h>

using namespace ovmem::cli;
using namespace std::string_view_literals;

namespace {

const char32_t STEERING[][2] = {
    {0x00, 0x1F},       {0x7F, 0x9F},       {0xAD, 0xAD},      {0x34F, 0x34F},
    {0x61C, 0x61C},     {0x115F, 0x1160},   {0x17B4, 0x17B5},  {0x180B, 0x180F},
    {0x200B, 0x200F},   {0x2028, 0x202E},   {0x2060, 0x206F},  {0x3164, 0x3164},
    {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},  {0xFFF0, 0xFFFB},
    {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF}};

bool isListed(char32_t code) {
    for (const auto& range : STEERING) {
        if (range[0] <= code && code <= range[1]) {
            return true;
        }
    }
    return false;
}

}  // namespace

TEST(TerminalText, ControlsAndInvisibleCharactersSteerATerminalAndNothingElse) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        EXPECT_EQ(steersTerminal(code), isListed(code)) << std::hex << +code;
    }
}

TEST(TerminalText, OrdinaryTextStays) {
    EXPECT_EQ(escaped(""), "");
    EXPECT_EQ(escaped("Ventil 'Süd' \"7\" 冷却 \U0001F40B ~"),
              "Ventil 'Süd' \"7\" 冷却 \U0001F40B ~");
    EXPECT_EQ(escaped("\u00A0\u061B\u200A\u2010\u2027\u202F\u205F\u2070"),
              "\u00A0\u061B\u200A\u2010\u2027\u202F\u205F\u2070");
}

TEST(TerminalText, InvisibleCharactersAreEscapedSoThatNoTwoNamesLookAlike) {
    EXPECT_EQ(escaped("a\u00ADb\u200Bc\u200Dd\u2060e\uFEFF"),
              "a\\xc2\\xadb\\xe2\\x80\\x8bc\\xe2\\x80\\x8dd\\xe2\\x81\\xa0e"
              "\\xef\\xbb\\xbf");
    EXPECT_EQ(escaped("a\U000E0041"), "a\\xf3\\xa0\\x81\\x81");
}

TEST(TerminalText, ControlsAreEscapedByteForByte) {
    EXPECT_EQ(escaped("\0\t\n\r\x1B\x1F\x7F"sv),
              "\\x00\\x09\\x0a\\x0d\\x1b\\x1f\\x7f");
    EXPECT_EQ(escaped("\u0080\u009F"), "\\xc2\\x80\\xc2\\x9f");
    EXPECT_EQ(escaped("\u061C"), "\\xd8\\x9c");
    EXPECT_EQ(escaped("a\u200Eb\u202Ec\u2069"),
              "a\\xe2\\x80\\x8eb\\xe2\\x80\\xaec\\xe2\\x81\\xa9");
}

TEST(TerminalText, BytesThatAreNotUtf8AreEscapedOneByOne) {
    EXPECT_EQ(escaped("\xFF"), "\\xff");
    EXPECT_EQ(escaped("a\xC3"), "a\\xc3");
    EXPECT_EQ(escaped("\xE2\x82x"), "\\xe2\\x82x");
    EXPECT_EQ(escaped("\x9B"
                      "2J"),
              "\\x9b2J");
    EXPECT_EQ(escaped("\xF7\xBF\xBF\xBF"), "\\xf7\\xbf\\xbf\\xbf");
}

TEST(TerminalText, ABackslashIsDoubledSoThatNoNameLooksEscaped) {
    EXPECT_EQ(escaped("\\x1b"), "\\\\x1b");
}

TEST(TerminalText, TheLinesOfAMessageAreIndented) {
    EXPECT_EQ(escapedLines("a"), "a");
    EXPECT_EQ(escapedLines("a\nb\n\x1B\nc"),
              "a\n       b\n       \\x1b\n       c");
    EXPECT_EQ(escapedLines("\n"), "\n       ");
}
