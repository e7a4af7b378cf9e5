#include <new>

#include <gtest/gtest.h>
#include <xercesc/internal/VecAttributesImpl.hpp>

#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/support/Thrown.h"
#include "tests/util/ScriptedConverters.h"
#include "tests/util/XmlPlatform.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;
using Attributes = std::map<std::string, std::string>;
using OvMemTest::thrownBy;

// Text in a code page of the test's choice.
class TranscodeToString : public testing::Test {
protected:
    explicit TranscodeToString(const char* codePage = "UTF-8")
        : converters(codePage) {}
    ~TranscodeToString() override {
        SAXToNodeParser::setReplaceSubCharacters(false);
    }

    OvMemTest::ScriptedConverters converters;

private:
    OvMemTest::XmlPlatform platform;
};

class TranscodeToAscii : public TranscodeToString {
protected:
    TranscodeToAscii() : TranscodeToString("US-ASCII") {}
};

TEST_F(TranscodeToString, GivesTheTextInTheCodePageOfTheProcess) {
    EXPECT_EQ(transcodeToString(u"a\u00E9\u20AC\U0001F680", false),
              "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9A\x80");
    EXPECT_EQ(transcodeToString(u"a\u00E9", true), "a\xC3\xA9");
}

TEST_F(TranscodeToString, TakesNoTextForTheEmptyOne) {
    EXPECT_EQ(transcodeToString(nullptr, false), "");
    EXPECT_EQ(transcodeToString(nullptr, true), "");
    EXPECT_EQ(transcodeToString(u"", false), "");
}

TEST_F(TranscodeToString, EndsAtTheNul) {
    EXPECT_EQ(transcodeToString(u"a\0b", false), "a");
}

TEST_F(TranscodeToString, ReplacesSubstituteCharactersOnDemand) {
    EXPECT_EQ(transcodeToString(u"\u001Aa\u001A\u001A", false),
              "\x1A"
              "a\x1A\x1A");
    EXPECT_EQ(transcodeToString(u"\u001Aa\u001A\u001A", true), "?a??");
    EXPECT_EQ(transcodeToString(u"\u0019\u001B?", true), "\x19\x1B?");
}

TEST_F(TranscodeToString, CopesWithHalfASurrogatePair) {
    const std::string replacement = "\xEF\xBF\xBD";
    const XMLCh high[] = {u'a', 0xD800, 0};
    const XMLCh low[] = {u'a', 0xDC00, u'b', 0};
    EXPECT_EQ(transcodeToString(high, false), "a" + replacement);
    EXPECT_EQ(transcodeToString(low, true), "a" + replacement + "b");
}

// What cannot be expressed is replaced, so that only a want of memory is left.
TEST_F(TranscodeToString, ATextThatTheXmlLibraryCannotConvertIsABadAlloc) {
    converters.failConverting(U_MEMORY_ALLOCATION_ERROR);
    EXPECT_THROW(transcodeToString(u"a", false), std::bad_alloc);
    EXPECT_THROW(transcodeToString(u"a", true), std::bad_alloc);
    EXPECT_EQ(transcodeToString(nullptr, true), "");
    EXPECT_EQ(thrownBy([] { SAXToNodeParser().parseString("<r>x</r>"); }).type,
              "bad_alloc");
    EXPECT_EQ(thrownBy([] { SAXToNodeParser().parseString("<r>"); }).type,
              "bad_alloc");
    converters.failConverting(U_ZERO_ERROR);
    EXPECT_EQ(transcodeToString(u"a", false), "a");
}

// In UTF-8 a substitute character comes from the document itself.
TEST_F(TranscodeToString, ADocumentMayHoldSubstituteCharacters) {
    const std::string xml =
        R"(<?xml version="1.1"?><r xmlns="u&#26;" k="v&#26;">t&#26;</r>)";
    SAXToNodeParser keeping;
    const XMLNode& kept = *keeping.parseString(xml);
    EXPECT_EQ(kept.text, "t\x1A");
    EXPECT_EQ(kept.attributes, (Attributes{{"k", "v\x1A"}}));
    EXPECT_EQ(kept.namespaceURI, "u\x1A");

    SAXToNodeParser::setReplaceSubCharacters(true);
    SAXToNodeParser replacing;
    const XMLNode& replaced = *replacing.parseString(xml);
    EXPECT_EQ(replaced.text, "t?");
    EXPECT_EQ(replaced.attributes, (Attributes{{"k", "v?"}}));
    EXPECT_EQ(replaced.namespaceURI, "u\x1A");
    EXPECT_EQ(kept.text, "t\x1A");
}

// Turns the replacement on, then off, between one attribute and the next.
class FlippingAttributes : public xercesc::VecAttributesImpl {
public:
    XMLSize_t getLength() const override { return 3; }
    const XMLCh* getLocalName(const XMLSize_t index) const override {
        static const XMLCh* const names[] = {u"a", u"b", u"c"};
        SAXToNodeParser::setReplaceSubCharacters(index == 0);
        return names[index];
    }
    const XMLCh* getValue(const XMLSize_t) const override { return u"\u001A"; }
};

TEST_F(TranscodeToString, TheFlagIsReadAfreshForEachAttribute) {
    SAXToNodeParser parser;
    parser.startElement(u"", u"r", u"r", FlippingAttributes());
    EXPECT_EQ(parser.getRootNode()->attributes,
              (Attributes{{"a", "\x1A"}, {"b", "?"}, {"c", "\x1A"}}));
}

TEST_F(TranscodeToString, TheFlagIsReadAfreshForEachPieceOfText) {
    SAXToNodeParser parser;
    parser.startElement(u"", u"r", u"r", xercesc::VecAttributesImpl());
    parser.characters(u"\u001A", 1);
    SAXToNodeParser::setReplaceSubCharacters(true);
    parser.characters(u"\u001A", 1);
    SAXToNodeParser::setReplaceSubCharacters(false);
    parser.characters(u"\u001A", 1);
    EXPECT_EQ(parser.getRootNode()->text, "\x1A?\x1A");
}

TEST_F(TranscodeToAscii, WhatTheCodePageLacksBecomesASubstituteCharacter) {
    EXPECT_EQ(transcodeToString(u"a\u00E9b", false),
              "a\x1A"
              "b");
    EXPECT_EQ(transcodeToString(u"a\u00E9b", true), "a?b");
    EXPECT_EQ(transcodeToString(u"\U0001F680", true), "?");
}

TEST_F(TranscodeToAscii, OnlyTextAndAttributeValuesHaveItReplaced) {
    const std::string xml =
        "<\xC3\xA9 xmlns='\xC3\xA9' \xC3\xA9='v\xC3\xA9'>t\xC3\xA9</\xC3\xA9>";
    SAXToNodeParser keeping;
    const XMLNode& kept = *keeping.parseString(xml);
    EXPECT_EQ(kept.name, "\x1A");
    EXPECT_EQ(kept.namespaceURI, "\x1A");
    EXPECT_EQ(kept.attributes, (Attributes{{"\x1A", "v\x1A"}}));
    EXPECT_EQ(kept.text, "t\x1A");

    SAXToNodeParser::setReplaceSubCharacters(true);
    SAXToNodeParser replacing;
    const XMLNode& replaced = *replacing.parseString(xml);
    EXPECT_EQ(replaced.name, "\x1A");
    EXPECT_EQ(replaced.namespaceURI, "\x1A");
    EXPECT_EQ(replaced.attributes, (Attributes{{"\x1A", "v?"}}));
    EXPECT_EQ(replaced.text, "t?");
}

TEST_F(TranscodeToAscii, AReportHasItReplacedWhateverTheFlag) {
    for (const bool on : {false, true}) {
        SAXToNodeParser::setReplaceSubCharacters(on);
        SAXToNodeParser parser;
        EXPECT_EQ(
            thrownBy([&] { parser.parseString("<r>&\xC3\xA9;</r>"); }).message,
            "Fatal Error: parsing: From-String: line 1, char 7\n"
            "Message: entity '?' not found\n");
    }
}

}  // namespace
