#include "emulator/manager/ShownText.h"

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

TEST(ShownText, AShortTextStandsInQuotes) {
    EXPECT_EQ(shown("pump"), "'pump'");
    EXPECT_EQ(shown(""), "''");
    EXPECT_EQ(shown("V\xC3\xA4lv"), "'V\xC3\xA4lv'");
}

TEST(ShownText, ControlCharactersAreQuestionMarks) {
    EXPECT_EQ(shown(std::string_view("a\0b\nc\x7F", 6)), "'a?b?c?'");
}

TEST(ShownText, ALongTextIsCutAfterEightyBytes) {
    EXPECT_EQ(shown(std::string(80, 'x')), "'" + std::string(80, 'x') + "'");
    EXPECT_EQ(shown(std::string(81, 'x')), "'" + std::string(80, 'x') + "...'");
}

TEST(ShownText, NoCharacterIsCutInItsMiddle) {
    EXPECT_EQ(shown(std::string(79, 'x') + "\xE2\x82\xAC"),
              "'" + std::string(79, 'x') + "...'");
    EXPECT_EQ(shown(std::string(77, 'x') + "\xE2\x82\xAC" + "y"),
              "'" + std::string(77, 'x') + "\xE2\x82\xAC...'");
}
