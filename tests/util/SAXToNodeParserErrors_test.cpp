#include <filesystem>
#include <ostream>

#include <gtest/gtest.h>
#include <xercesc/sax/SAXParseException.hpp>

#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/support/Thrown.h"
#include "tests/util/CommaLocale.h"
#include "tests/util/XmlPlatform.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
using namespace std::string_literals;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;

const std::string dataFolder =
    std::filesystem::canonical(OVMEM_TEST_DATA).string();

Thrown thrownByText(const std::string& xml) {
    return thrownBy([&] { SAXToNodeParser().parseString(xml); });
}

Thrown thrownByFile(const std::string& name) {
    return thrownBy([&] { SAXToNodeParser().parseFile(name); });
}

struct Malformed {
    std::string document;
    std::string report;  // behind "Fatal Error: parsing: From-String: "
};

std::ostream& operator<<(std::ostream& stream, const Malformed& malformed) {
    return stream << malformed.document;
}

class SAXToNodeParserReports : public OvMemTest::XmlPlatformTest,
                               public testing::WithParamInterface<Malformed> {};

TEST_P(SAXToNodeParserReports, SayWhatIsWrongAndWhere) {
    EXPECT_EQ(
        thrownByText(GetParam().document),
        (Thrown{"DomException", 0,
                "Fatal Error: parsing: From-String: " + GetParam().report}));
}

INSTANTIATE_TEST_SUITE_P(
    Documents, SAXToNodeParserReports,
    testing::Values(
        Malformed{"", "line 1, char 1\nMessage: invalid document structure\n"},
        Malformed{"\0<r/>"s,
                  "line 1, char 1\nMessage: invalid document structure\n"},
        Malformed{"text",
                  "line 1, char 1\nMessage: invalid document structure\n"},
        Malformed{"<a></b>",
                  "line 1, char 6\nMessage: expected end of tag 'a'\n"},
        Malformed{"<a>\n <b></a>",
                  "line 2, char 7\nMessage: expected end of tag 'b'\n"},
        Malformed{"<a>",
                  "line 1, char 4\n"
                  "Message: input ended before all started tags were"
                  " ended; last tag started is 'a'\n"},
        Malformed{"<a>x\0</a>"s,
                  "line 1, char 6\nMessage: invalid character 0x0\n"},
        Malformed{"<a>x</a>junk",
                  "line 1, char 9\nMessage: comment or"
                  " processing instruction expected\n"},
        Malformed{R"(<a k="1" k="2"/>)",
                  "line 1, char 17\nMessage: attribute 'k' is already"
                  " specified for element 'a'\n"},
        Malformed{"<a k=1/>",
                  "line 1, char 6\nMessage: attribute value expected\n"},
        Malformed{"<a>&none;</a>",
                  "line 1, char 10\nMessage: entity 'none' not found\n"},
        Malformed{"<p:a/>",
                  "line 1, char 7\nMessage: prefix 'p' can not be"
                  " resolved to namespace URI\n"},
        Malformed{"<a>&#26;</a>",
                  "line 1, char 9\nMessage: invalid character reference\n"},
        Malformed{" <?xml version=\"1.0\"?><a/>",
                  "line 1, char 8\nMessage: XML or TEXT declaration must"
                  " start at line 1, column 1\n"}));

class SAXToNodeParserErrors : public OvMemTest::XmlPlatformTest {};

// As a whole this text would be well-formed.
TEST_F(SAXToNodeParserErrors, ADocumentInUtf16IsCutOffAtItsFirstNul) {
    EXPECT_EQ(thrownByText("\xFF\xFE<\0r\0/\0>\0"s),
              (Thrown{"DomException", 0,
                      "Fatal Error: parsing: From-String: line 1, char 2\n"
                      "Message: element name expected\n"}));
}

// The XML library's own way with sequences that lie beyond Unicode, but for
// F4 90 and above: behind 32 characters it breaks off in order to report them
// in the next piece, and goes on behind them there.
TEST_F(SAXToNodeParserErrors, BytesBeyondUnicodeAreRefusedBehind32Characters) {
    const std::string declaration = "<?xml version='1.0' encoding='UTF-8'?>";
    const std::string before = "<r>" + std::string(29, 'a');
    for (const char lead : {'\xF5', '\xF6', '\xF7'}) {
        const std::string beyond = lead + "\x80\xBF\xBFz</r>"s;
        EXPECT_EQ(thrownByText(before + beyond),
                  (Thrown{"DomException", 0,
                          "Fatal Error: parsing: From-String: line 1, char 1\n"
                          "Message: invalid multi-byte sequence\n"}));
        EXPECT_EQ(thrownByText(declaration + before + beyond),
                  (Thrown{"DomException", 0,
                          "Fatal Error: parsing: From-String: line 1, char 39\n"
                          "Message: invalid multi-byte sequence\n"}));
    }
}

TEST_F(SAXToNodeParserErrors, BytesBeyondUnicodeVanishBehindMoreCharacters) {
    const std::string before(30, 'a');
    const std::string between(33, 'b');
    for (const char lead : {'\xF5', '\xF6', '\xF7'}) {
        const std::string beyond = lead + "\x80\xBF\xBF"s;
        SAXToNodeParser parser;
        EXPECT_EQ(parser
                      .parseString("<r>" + before + beyond + between + beyond +
                                   "z</r>")
                      ->text,
                  before + between + "z");
    }
    EXPECT_EQ(thrownByText("<r>" + before + "\xF4\x90\x80\x80z</r>").message,
              "Fatal Error: parsing: From-String: line 1, char 1\n"
              "Message: invalid bytes '\uFFFD' and '\uFFFD' of a 4-byte "
              "sequence\n");
}

TEST_F(SAXToNodeParserErrors, NumbersStandInTheClassicLocale) {
    const OvMemTest::CommaLocale locale;
    const std::string lines(1233, '\n');
    const std::string blanks(9995, ' ');
    EXPECT_EQ(thrownByText(lines + blanks + "<a></b>"),
              (Thrown{"DomException", 0,
                      "Fatal Error: parsing: From-String: line 1234,"
                      " char 10001\n"
                      "Message: expected end of tag 'a'\n"}));
}

TEST_F(SAXToNodeParserErrors, AMissingFileIsNamedAsItWasGiven) {
    EXPECT_EQ(thrownByFile("no such file.xml"),
              (Thrown{"DomException", 0,
                      "XML Document 'no such file.xml' does not exist.\n"}));
    EXPECT_EQ(thrownByFile("/none/none.xml"),
              (Thrown{"DomException", 0,
                      "XML Document '/none/none.xml' does not exist.\n"}));
    EXPECT_EQ(thrownByFile(""),
              (Thrown{"DomException", 0, "XML Document '' does not exist.\n"}));
}

TEST_F(SAXToNodeParserErrors, AFileIsParsedLikeAText) {
    SAXToNodeParser parser;
    const auto* root = parser.parseFile(dataFolder + "/namespaces.xml");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(parser.getRootNode(), root);
    EXPECT_EQ(root->name, "fleet");
    EXPECT_EQ(root->namespaceURI, "urn:fleet");
    EXPECT_EQ(root->text, "\n  \n  \n");
    ASSERT_EQ(root->children.size(), 2u);
    EXPECT_EQ(root->children[0]->name, "ship");
    EXPECT_EQ(root->children[0]->getAttribute("name"), "A & B");
    EXPECT_EQ(root->children[1]->name, "cook");
    EXPECT_EQ(root->children[1]->text, "C\xC3\xA9line");
}

TEST_F(SAXToNodeParserErrors, AReportAboutAFileNamesThatFile) {
    const std::string file = dataFolder + "/mismatched-tag.xml";
    EXPECT_EQ(thrownByFile(file),
              (Thrown{"DomException", 0,
                      "Fatal Error: parsing: " + file +
                          ": line 3, char 3\n"
                          "Message: expected end of tag 'b'\n"}));
}

TEST_F(SAXToNodeParserErrors, ARelativeFileNameBecomesAbsoluteInTheReport) {
    const std::string file = dataFolder + "/mismatched-tag.xml";
    EXPECT_EQ(thrownByFile(std::filesystem::relative(file).string()).message,
              thrownByFile(file).message);
}

TEST_F(SAXToNodeParserErrors, ALaterErrorStillKnowsTheFile) {
    const std::string file = dataFolder + "/namespaces.xml";
    SAXToNodeParser parser;
    parser.parseFile(file);
    EXPECT_EQ(
        thrownBy([&] {
            parser.error(xercesc::SAXParseException(u"m", u"", u"", 1, 1));
        }).message,
        "XML Document '" + file + "' does not exist.\n");
}

}  // namespace
