#include "emulator/manager/XmlText.h"

#include <string>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

TEST(XmlText, WhatXmlCarriesIsAccepted) {
    for (const char* text :
         {"", "pump", "<&>'\"", "tab\tline\n", "\x7F", "\xC2\x80", "\xDF\xBF",
          "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBD",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(isXmlText(text)) << text;
    }
}

TEST(XmlText, ControlCharactersAreNot) {
    for (char code = 1; code < 0x20; ++code) {
        EXPECT_EQ(isXmlText(std::string("a") + code),
                  code == '\t' || code == '\n')
            << static_cast<int>(code);
    }
    EXPECT_FALSE(isXmlText(std::string(1, '\0')));
}

TEST(XmlText, WhatIsNotUtf8IsNot) {
    for (const char* text :
         {"\x80", "\xBF", "\xFF", "\xF8\x88\x80\x80\x80", "\xC3", "\xC3(",
          "\xE2\x82", "\xE2(\xAC", "\xF0\x90\x80", "a\xC3\xA4\xA4"}) {
        EXPECT_FALSE(isXmlText(text)) << text;
    }
}

TEST(XmlText, NeitherAreLongFormsSurrogatesAndNonCharacters) {
    for (const char* text :
         {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",
          "\xED\xA0\x80", "\xED\xBF\xBF", "\xEF\xBF\xBE", "\xEF\xBF\xBF",
          "\xF4\x90\x80\x80", "\xF7\xBF\xBF\xBF"}) {
        EXPECT_FALSE(isXmlText(text)) << text;
    }
}
