#include <iostream>
#include <sstream>

#include <gtest/gtest.h>
#include <xercesc/internal/VecAttributesImpl.hpp>
#include <xercesc/sax/SAXParseException.hpp>

#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/support/Thrown.h"
#include "tests/util/XmlPlatform.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;
using OvMemTest::nothingThrown;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;
using xercesc::SAXParseException;

// What is written to std::cerr while it lives.
class CapturedErrors {
public:
    CapturedErrors() : before(std::cerr.rdbuf(captured.rdbuf())) {}
    ~CapturedErrors() { std::cerr.rdbuf(before); }
    CapturedErrors(const CapturedErrors&) = delete;
    CapturedErrors& operator=(const CapturedErrors&) = delete;

    std::string text() const { return captured.str(); }

private:
    std::ostringstream captured;
    std::streambuf* before;
};

const std::string outsideOne = "End element called when not inside one!\n";

// The callbacks as any reader might call them.
class SAXToNodeParserCallbacks : public OvMemTest::XmlPlatformTest {
protected:
    void start(const XMLCh* name) {
        parser.startElement(u"urn:u", name, u"q:name", noAttributes);
    }
    void end(const XMLCh* name) { parser.endElement(u"urn:u", name, u""); }
    void text(const XMLCh* chars, XMLSize_t length) {
        parser.characters(chars, length);
    }

    const XMLNode& root() { return *parser.getRootNode(); }

    xercesc::VecAttributesImpl noAttributes;
    CapturedErrors errors;
    SAXToNodeParser parser;
};

TEST_F(SAXToNodeParserCallbacks, AMismatchedEndTagIsNoEndOutsideAnElement) {
    const Thrown thrown = thrownBy([&] { parser.parseString("<a></b>"); });
    EXPECT_EQ(thrown.message,
              "Fatal Error: parsing: From-String: line 1, char 6\n"
              "Message: expected end of tag 'a'\n");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SAXToNodeParserCallbacks, TheHalvesOfACharacterAreJoined) {
    const XMLCh high[] = {u'a', 0xD83D, 0};
    const XMLCh low[] = {0xDE80, u'b', 0};
    start(u"r");
    text(high, 2);
    EXPECT_EQ(root().text, "a");
    text(low, 2);
    EXPECT_EQ(root().text,
              "a\xF0\x9F\x9A\x80"
              "b");
}

TEST_F(SAXToNodeParserCallbacks, TheFirstAndTheLastHalfAreHalvesToo) {
    start(u"r");
    for (const XMLCh half : std::initializer_list<XMLCh>{0xD800, 0xDBFF}) {
        const XMLCh high[] = {half, 0};
        const XMLCh low[] = {0xDC00, 0};
        text(high, 1);
        text(low, 1);
    }
    EXPECT_EQ(root().text, "\xF0\x90\x80\x80\xF4\x8F\xB0\x80");
}

TEST_F(SAXToNodeParserCallbacks, WhatIsNoFirstHalfIsNotHeldBack) {
    const XMLCh before[] = {0xD7FF, 0};
    const XMLCh behind[] = {0xDC00, 0};
    start(u"r");
    text(before, 1);
    EXPECT_EQ(root().text, "\xED\x9F\xBF");
    text(behind, 1);
    EXPECT_EQ(root().text, "\xED\x9F\xBF\xEF\xBF\xBD");
}

TEST_F(SAXToNodeParserCallbacks, AHalfThatNothingFollowsIsReplaced) {
    const XMLCh high[] = {u'a', 0xD83D, 0};
    start(u"r");
    text(high, 2);
    start(u"c");
    text(high, 2);
    end(u"c");
    end(u"r");
    EXPECT_EQ(root().text, "a\xEF\xBF\xBD");
    EXPECT_EQ(root().children.at(0)->text, "a\xEF\xBF\xBD");
}

TEST_F(SAXToNodeParserCallbacks, AParseBeginsWithoutTheHalfLeftBefore) {
    const XMLCh high[] = {u'a', 0xD83D, 0};
    start(u"r");
    text(high, 2);
    TreeBudget::setLimits(TreeBudget::unlimited, 256 + 1);
    EXPECT_EQ(thrownBy([&] { parser.parseString("<b/>"); }), nothingThrown);
    TreeBudget::liftLimits();
    EXPECT_EQ(root().name, "b");
    EXPECT_EQ(root().text, "");
}

TEST_F(SAXToNodeParserCallbacks, GrowATree) {
    parser.startDocument();
    start(u"r");
    text(u"x", 1);
    start(u"c");
    text(u"y", 1);
    end(u"c");
    text(u"z", 1);
    end(u"r");
    parser.endDocument();
    EXPECT_EQ(root().name, "r");
    EXPECT_EQ(root().namespaceURI, "urn:u");
    EXPECT_EQ(root().text, "xz");
    EXPECT_EQ(root().parent, nullptr);
    ASSERT_EQ(root().children.size(), 1u);
    EXPECT_EQ(root().children[0]->name, "c");
    EXPECT_EQ(root().children[0]->text, "y");
    EXPECT_EQ(root().children[0]->parent, &root());
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SAXToNodeParserCallbacks, AnEndOutsideAnyElementIsNotedAndNoMore) {
    EXPECT_EQ(thrownBy([&] { end(u"r"); }), nothingThrown);
    EXPECT_EQ(errors.text(), outsideOne);
    start(u"r");
    end(u"r");
    end(u"r");
    EXPECT_EQ(errors.text(), outsideOne + outsideOne);
    EXPECT_EQ(root().name, "r");
}

TEST_F(SAXToNodeParserCallbacks, AnEndClosesTheOpenElementWhateverItsName) {
    start(u"r");
    start(u"c");
    end(u"other");
    text(u"x", 1);
    EXPECT_EQ(root().text, "x");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SAXToNodeParserCallbacks, AStartBehindTheRootFindsNoPlaceInTheTree) {
    start(u"r");
    end(u"r");
    start(u"second");
    text(u"x", 1);
    end(u"second");
    EXPECT_EQ(root().name, "r");
    EXPECT_TRUE(root().children.empty());
    EXPECT_EQ(root().text, "");
    EXPECT_EQ(errors.text(), outsideOne);
}

TEST_F(SAXToNodeParserCallbacks, TextEndsAtItsNulWhateverTheLength) {
    start(u"r");
    text(u"abc", 0);
    text(u"de\0f", 4);
    text(u"", 7);
    EXPECT_EQ(root().text, "abcde");
}

TEST_F(SAXToNodeParserCallbacks, AnEmptyPieceOfTextIsNothing) {
    const XMLCh half[] = {0xD83D, 0};
    start(u"r");
    text(half + 1, 0);
    text(u"a", 1);
    EXPECT_EQ(root().text, "a");
}

TEST_F(SAXToNodeParserCallbacks, TextOutsideAnyElementIsDropped) {
    text(u"before", 6);
    start(u"r");
    end(u"r");
    text(u"behind", 6);
    EXPECT_EQ(root().text, "");
}

TEST_F(SAXToNodeParserCallbacks, OtherEventsChangeNothing) {
    start(u"r");
    parser.ignorableWhitespace(u" ", 1);
    parser.processingInstruction(u"target", u"data");
    parser.startDocument();
    parser.endDocument();
    parser.startPrefixMapping(u"p", u"urn:p");
    parser.endPrefixMapping(u"p");
    parser.skippedEntity(u"e");
    parser.comment(u"c", 1);
    parser.resetErrors();
    text(u"x", 1);
    EXPECT_EQ(root().text, "x");
    EXPECT_TRUE(root().children.empty());
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SAXToNodeParserCallbacks, AnErrorEndsTheParseWithItsReport) {
    const SAXParseException exception(u"msg", u"public", u"sys", 3, 7);
    EXPECT_EQ(thrownBy([&] { parser.error(exception); }),
              (Thrown{"DomException", 0,
                      "Error: parsing: sys: line 3, char 7\n"
                      "Message: msg\n"}));
    EXPECT_EQ(thrownBy([&] { parser.fatalError(exception); }),
              (Thrown{"DomException", 0,
                      "Fatal Error: parsing: sys: line 3, char 7\n"
                      "Message: msg\n"}));
}

TEST_F(SAXToNodeParserCallbacks, NoReportOfAnErrorBearsTheDocument) {
    parser.parseString("<r/>");
    const SAXParseException exception(u"msg", u"public", u"sys", 3, 7);
    EXPECT_EQ(thrownBy([&] { parser.error(exception); }).message,
              "Error: parsing: sys: line 3, char 7\nMessage: msg\n");
}

TEST_F(SAXToNodeParserCallbacks, AnErrorWithoutASystemIdNamesTheDocument) {
    const SAXParseException exception(u"msg", u"public", u"", 3, 7);
    EXPECT_EQ(thrownBy([&] { parser.error(exception); }).message,
              "XML Document '' does not exist.\n");
    parser.parseString("<r/>");
    EXPECT_EQ(thrownBy([&] { parser.fatalError(exception); }).message,
              "XML Document 'From String' does not exist.\n");
}

TEST_F(SAXToNodeParserCallbacks, AWarningIsDropped) {
    const SAXParseException exception(u"msg", u"public", u"sys", 3, 7);
    EXPECT_EQ(thrownBy([&] { parser.warning(exception); }), nothingThrown);
    EXPECT_EQ(errors.text(), "");
}

// So long a text that its pages are gone once it is freed.
TEST_F(SAXToNodeParserCallbacks, AWarningAfterTheParseReadsNoTextThatIsGone) {
    std::string text(std::size_t{64} << 20, '\0');
    text.replace(0, 4, "<r/>");
    EXPECT_EQ(parser.parseString(text)->name, "r");
    std::string().swap(text);
    const SAXParseException exception(u"msg", u"public", u"sys", 3, 7);
    EXPECT_EQ(thrownBy([&] { parser.warning(exception); }), nothingThrown);
}

TEST_F(SAXToNodeParserCallbacks, AWarningInADocumentDoesNotEndTheParse) {
    EXPECT_EQ(parser
                  .parseString("<!DOCTYPE r [<!ATTLIST r k CDATA 'first'"
                               " k CDATA 'again'>]><r>x</r>")
                  ->text,
              "x");
    EXPECT_EQ(root().attributes,
              (std::map<std::string, std::string>{{"k", "first"}}));
    EXPECT_EQ(errors.text(), "");
}

}  // namespace
