#include "OvMemCppBinding/util/ParseWatch.h"

#include <chrono>
#include <functional>
#include <vector>

#include <gtest/gtest.h>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include "tests/support/Thrown.h"
#include "tests/util/XmlPlatform.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::DoctypeRefusal;
using Orvane::Net::OvModelEventManager::Util::ParseTime;
using Orvane::Net::OvModelEventManager::Util::ParseWatch;
using Orvane::Net::OvModelEventManager::Util::TreeBudget;
using OvMemTest::nothingThrown;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;
using xercesc::XMLUni;

const XMLCh* const text = XMLUni::fgXMLString;

class ParseWatchTest : public OvMemTest::XmlPlatformTest {
protected:
    ~ParseWatchTest() override { ParseTime::liftLimit(); }

    void start(ParseWatch& watch) const {
        watch.startElement(declaration, 0, text, attributes, 0, false, false);
    }

    // Of a watch whose time is over.
    Thrown reporting(const std::function<void(ParseWatch&)>& report) const {
        TreeBudget budget;
        ParseTime::liftLimit();
        ParseTime::setLimit(std::chrono::milliseconds(0));
        ParseTime time;
        ParseWatch watch(budget, time);
        return thrownBy([&] {
            for (int i = 0; i < 1000; ++i) {
                report(watch);
            }
        });
    }

    const xercesc::DTDElementDecl declaration{text, 0,
                                              xercesc::DTDElementDecl::Any};
    const xercesc::DTDEntityDecl entity{text};
    const xercesc::RefVectorOf<xercesc::XMLAttr> attributes{1};
    const Thrown over{"DomException", 0,
                      "XmlPlatformGuard: the XML library may take no more "
                      "than 0 ms of processor time for a document"};
};

}  // namespace

TEST_F(ParseWatchTest, WhateverHasContentIsALookAtTheTime) {
    EXPECT_EQ(reporting([this](ParseWatch& watch) { start(watch); }), over);
    EXPECT_EQ(reporting([](ParseWatch& watch) {
                  watch.docCharacters(text, 1, false);
              }),
              over);
    EXPECT_EQ(reporting([](ParseWatch& watch) { watch.docComment(text); }),
              over);
    EXPECT_EQ(reporting([](ParseWatch& watch) { watch.docPI(text, text); }),
              over);
    EXPECT_EQ(reporting([](ParseWatch& watch) {
                  watch.ignorableWhitespace(text, 1, false);
              }),
              over);
}

// Eight declarations cost 64 bytes each and, when a prefix is looked up among
// them, one byte together.
TEST_F(ParseWatchTest, DeclarationsOfAnEmptyElementAreNotInScopeAfterIt) {
    xercesc::RefVectorOf<xercesc::XMLAttr> declarations(8);
    for (int i = 0; i < 8; ++i) {
        declarations.addElement(
            new xercesc::XMLAttr(0, text, XMLUni::fgXMLNSString, text));
    }
    for (const bool isEmpty : {true, false}) {
        TreeBudget::setLimits(0, 8 * 64 + 1);
        TreeBudget budget;
        ParseTime time;
        ParseWatch watch(budget, time);
        EXPECT_EQ(thrownBy([&] {
                      watch.startElement(declaration, 0, text, declarations, 8,
                                         isEmpty, false);
                  }),
                  nothingThrown);
        const Thrown later = thrownBy([&] { budget.lookUp(1); });
        EXPECT_EQ(later == nothingThrown, isEmpty) << later;
        TreeBudget::liftLimits();
    }
}

TEST_F(ParseWatchTest, TheEndOfAnElementIsALookAtTheTime) {
    TreeBudget budget;
    ParseTime::setLimit(std::chrono::milliseconds(0));
    ParseTime time;
    ParseWatch watch(budget, time);
    EXPECT_EQ(thrownBy([&] {
                  for (int i = 0; i < 15; ++i) {
                      start(watch);
                  }
              }),
              nothingThrown);
    EXPECT_EQ(thrownBy([&] { watch.endElement(declaration, 0, false, text); }),
              over);
}

TEST_F(ParseWatchTest, WhatHasNoContentIsNone) {
    EXPECT_EQ(reporting([this](ParseWatch& watch) {
                  watch.startDocument();
                  watch.resetDocument();
                  watch.XMLDecl(text, text, text, text);
                  watch.startEntityReference(entity);
                  watch.endEntityReference(entity);
                  watch.endDocument();
              }),
              nothingThrown);
}

TEST_F(ParseWatchTest, ADocumentTypeIsRefused) {
    EXPECT_EQ(thrownBy([] { DoctypeRefusal().startDTD(text, text, text); }),
              (Thrown{"DomException", 0,
                      "XmlPlatformGuard: a document may have no document "
                      "type"}));
}
