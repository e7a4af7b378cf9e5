#include "OvMemCppBinding/util/ParseReport.h"

#include <gtest/gtest.h>

#include "tests/util/CommaLocale.h"
#include "tests/util/XmlPlatform.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::composeParseReport;
using xercesc::SAXParseException;

class ParseReport : public OvMemTest::XmlPlatformTest {
protected:
    static std::string report(const XMLCh* message, const XMLCh* systemId,
                              bool announceDocument = false) {
        return composeParseReport(
            "Prefix: ", SAXParseException(message, u"public", systemId, 12, 34),
            "document", announceDocument);
    }
};

TEST_F(ParseReport, SaysWhereAndWhat) {
    EXPECT_EQ(report(u"no such tag", u"sys.xml"),
              "Prefix: sys.xml: line 12, char 34\n"
              "Message: no such tag\n");
}

TEST_F(ParseReport, LeavesOutAnEmptyMessage) {
    EXPECT_EQ(report(u"", u"sys.xml"), "Prefix: sys.xml: line 12, char 34\n");
    EXPECT_EQ(report(nullptr, u"sys.xml"),
              "Prefix: sys.xml: line 12, char 34\n");
}

TEST_F(ParseReport, EndsWhereTheDocumentIsToFollow) {
    EXPECT_EQ(report(u"m", u"sys.xml", true),
              "Prefix: sys.xml: line 12, char 34\n"
              "Message: m\n"
              "XML Document:\n");
    EXPECT_EQ(report(u"", u"sys.xml", true),
              "Prefix: sys.xml: line 12, char 34\n"
              "XML Document:\n");
}

TEST_F(ParseReport, WithoutASystemIdSaysThatTheDocumentDoesNotExist) {
    for (const XMLCh* systemId :
         {static_cast<const XMLCh*>(u""), static_cast<const XMLCh*>(nullptr)}) {
        EXPECT_EQ(report(u"m", systemId),
                  "XML Document 'document' does not exist.\n");
        EXPECT_EQ(report(u"m", systemId, true),
                  "XML Document 'document' does not exist.\n");
    }
}

TEST_F(ParseReport, ReplacesSubstituteCharacters) {
    EXPECT_EQ(report(u"a\u001Ab\u001A", u"\u001As"),
              "Prefix: ?s: line 12, char 34\n"
              "Message: a?b?\n");
    EXPECT_EQ(report(u"\u001A", u"\u001A"),
              "Prefix: ?: line 12, char 34\n"
              "Message: ?\n");
}

TEST_F(ParseReport, WritesNumbersInTheClassicLocale) {
    const OvMemTest::CommaLocale locale;
    EXPECT_EQ(
        composeParseReport(
            "", SAXParseException(u"m", u"", u"s", 1234567, 89012), "", false),
        "s: line 1234567, char 89012\n"
        "Message: m\n");
}

}  // namespace
