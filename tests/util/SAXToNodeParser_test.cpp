#include "OvMemCppBinding/util/SAXToNodeParser.h"

#include <algorithm>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "tests/support/SystemCheck.h"
#include "tests/support/Thrown.h"
#include "tests/util/XmlPlatform.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;
using namespace std::string_literals;
using Attributes = std::map<std::string, std::string>;
using OvMemTest::nothingThrown;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;
using OvMemTest::XmlPlatform;

static_assert(std::is_base_of_v<xercesc::DefaultHandler, SAXToNodeParser>);
static_assert(!std::is_copy_constructible_v<SAXToNodeParser>);

class SAXToNodeParserTree : public OvMemTest::XmlPlatformTest {
protected:
    const XMLNode& parse(const std::string& xml) {
        return *parser.parseString(xml);
    }

    SAXToNodeParser parser;
};

TEST_F(SAXToNodeParserTree, ARootWithoutContentIsEmpty) {
    const XMLNode& root = parse("<r/>");
    EXPECT_EQ(root.name, "r");
    EXPECT_EQ(root.namespaceURI, "");
    EXPECT_EQ(root.text, "");
    EXPECT_EQ(root.parent, nullptr);
    EXPECT_TRUE(root.children.empty());
    EXPECT_TRUE(root.attributes.empty());
}

TEST_F(SAXToNodeParserTree, ARootWithoutChildrenHasItsAttributesAndText) {
    const XMLNode& root = parse(R"(<r b="2" a="1">text</r>)");
    EXPECT_TRUE(root.children.empty());
    EXPECT_EQ(root.attributes, (Attributes{{"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(root.text, "text");
}

TEST_F(SAXToNodeParserTree, ChildrenStandInDocumentOrderUnderTheirParents) {
    const XMLNode& root = parse("<r><a><a1/><a2/></a><b/><a/></r>");
    ASSERT_EQ(root.children.size(), 3u);
    const XMLNode& a = *root.children[0];
    EXPECT_EQ(a.name, "a");
    EXPECT_EQ(a.parent, &root);
    ASSERT_EQ(a.children.size(), 2u);
    EXPECT_EQ(a.children[0]->name, "a1");
    EXPECT_EQ(a.children[1]->name, "a2");
    EXPECT_EQ(a.children[1]->parent, &a);
    EXPECT_EQ(root.children[1]->name, "b");
    EXPECT_EQ(root.children[1]->parent, &root);
    EXPECT_EQ(root.children[2]->name, "a");
    EXPECT_TRUE(root.children[2]->children.empty());
}

TEST_F(SAXToNodeParserTree, ANameIsLocalAndItsNamespaceStandsApart) {
    const XMLNode& root = parse(R"(<p:r xmlns:p="urn:p" xmlns="urn:d">)"
                                R"(<c><p:d/></c><e xmlns=""/></p:r>)");
    EXPECT_EQ(root.name, "r");
    EXPECT_EQ(root.namespaceURI, "urn:p");
    EXPECT_EQ(root.children[0]->name, "c");
    EXPECT_EQ(root.children[0]->namespaceURI, "urn:d");
    EXPECT_EQ(root.children[0]->children[0]->name, "d");
    EXPECT_EQ(root.children[0]->children[0]->namespaceURI, "urn:p");
    EXPECT_EQ(root.children[1]->namespaceURI, "");
}

TEST_F(SAXToNodeParserTree, ANamespaceDeclarationIsNoAttribute) {
    const XMLNode& root =
        parse(R"(<r xmlns="urn:d" xmlns:p="urn:p" p:k="v" xml:lang="de"/>)");
    EXPECT_EQ(root.attributes, (Attributes{{"k", "v"}, {"lang", "de"}}));
}

TEST_F(SAXToNodeParserTree, OfAttributesThatDifferInNamespaceTheLastWins) {
    EXPECT_EQ(parse(R"(<r xmlns:p="P" xmlns:q="Q" q:k="q" k="" p:k="p"/>)")
                  .attributes,
              (Attributes{{"k", "p"}}));
    SAXToNodeParser another;
    EXPECT_EQ(
        another.parseString(R"(<r xmlns:p="P" p:k="p" k=""/>)")->attributes,
        (Attributes{{"k", ""}}));
}

TEST_F(SAXToNodeParserTree, ReferencesArriveReplaced) {
    const XMLNode& root = parse(
        R"(<r k="&lt;&amp;&quot;&apos;&gt;&#x25;">&lt;&#65;&amp;lt;&#10;</r>)");
    EXPECT_EQ(root.attributes, (Attributes{{"k", "<&\"'>%"}}));
    EXPECT_EQ(root.text, "<A&lt;\n");
}

TEST_F(SAXToNodeParserTree, EntitiesOfTheDocumentAreExpanded) {
    const XMLNode& root =
        parse(R"(<!DOCTYPE r [<!ENTITY e "x<c>y</c>z">]><r>&e;&e;</r>)");
    EXPECT_EQ(root.text, "xzxz");
    ASSERT_EQ(root.children.size(), 2u);
    EXPECT_EQ(root.children[1]->name, "c");
    EXPECT_EQ(root.children[1]->text, "y");
}

TEST_F(SAXToNodeParserTree, CDataIsTextLikeAnyOther) {
    EXPECT_EQ(parse("<r>a<![CDATA[<b>&amp;]]>c<![CDATA[]]></r>").text,
              "a<b>&amp;c");
}

TEST_F(SAXToNodeParserTree, CommentsAndInstructionsLeaveNoTrace) {
    const XMLNode& root = parse(
        "<?xml version=\"1.0\"?><!-- a --><?p i?>\n"
        "<r>x<!-- b --><?p i?>y</r> \n<!-- c --><?p i?>\n");
    EXPECT_EQ(root.text, "xy");
    EXPECT_TRUE(root.children.empty());
}

TEST_F(SAXToNodeParserTree, TextIsNeitherTrimmedNorMixedWithThatOfChildren) {
    const XMLNode& root = parse("<a>\n  <b> x </b>\n</a>");
    EXPECT_EQ(root.text, "\n  \n");
    ASSERT_EQ(root.children.size(), 1u);
    EXPECT_EQ(root.children[0]->text, " x ");
}

TEST_F(SAXToNodeParserTree, MixedContentIsJoined) {
    const XMLNode& root = parse("<a>x<b/>y</a>");
    EXPECT_EQ(root.text, "xy");
    ASSERT_EQ(root.children.size(), 1u);
    EXPECT_EQ(root.children[0]->name, "b");
    EXPECT_EQ(root.children[0]->text, "");
}

TEST_F(SAXToNodeParserTree, WhitespaceOfElementContentIsTextToo) {
    EXPECT_EQ(parse("<!DOCTYPE a [<!ELEMENT a (b)><!ELEMENT b EMPTY>]>"
                    "<a> <b/>\n</a>")
                  .text,
              " \n");
}

TEST_F(SAXToNodeParserTree, LineEndsAreThoseOfXml) {
    EXPECT_EQ(parse("<r k=\"a\r\nb\tc\">a\r\nb\rc&#13;</r>").text, "a\nb\nc\r");
    EXPECT_EQ(parser.getRootNode()->getAttribute("k"), "a b c");
}

TEST_F(SAXToNodeParserTree, LongTextArrivesWhole) {
    std::string text;
    for (int number = 0; number < 50000; ++number)
        text += std::to_string(number) + " \xC3\xA9 \xF0\x9F\x9A\x80";
    EXPECT_TRUE(parse("<r>" + text + "</r>").text == text);
}

// The reader hands out text in chunks of a million units at the most.
TEST_F(SAXToNodeParserTree, ACharacterThatTheReaderCutsInTwoArrivesWhole) {
    constexpr std::size_t chunk = 1048576;
    const std::string rocket = "\xF0\x9F\x9A\x80";
    for (const std::size_t before : {chunk - 2, chunk - 1, chunk}) {
        const std::string text = std::string(before, 'x') + rocket + "y";
        SAXToNodeParser other;
        EXPECT_TRUE(other.parseString("<r>" + text + "</r>")->text == text)
            << before;
    }
    std::string rockets = "x";
    while (rockets.size() < 4 * chunk)
        rockets += rocket;
    EXPECT_TRUE(parse("<r>" + rockets + "</r>").text == rockets);
}

TEST_F(SAXToNodeParserTree, ADocumentMayBeNestedDeeply) {
    constexpr int depth = 5000;
    std::string xml;
    for (int level = 0; level < depth; ++level)
        xml += "<n>";
    for (int level = 0; level < depth; ++level)
        xml += "</n>";
    const XMLNode* node = &parse(xml);
    int levels = 1;
    for (; !node->children.empty(); ++levels)
        node = node->children[0];
    EXPECT_EQ(levels, depth);
}

TEST_F(SAXToNodeParserTree, TextBehindANulIsNotSeen) {
    EXPECT_EQ(parse("<r>x</r>\0<junk"s).text, "x");
    EXPECT_EQ(parser.getRootNode()->name, "r");
}

// Where nothing has asked to replace them.
TEST_F(SAXToNodeParserTree, SubstituteCharactersAreKeptAtFirst) {
    EXPECT_EQ(parse(R"(<?xml version="1.1"?><r>t&#26;</r>)").text, "t\x1A");
}

TEST_F(SAXToNodeParserTree, TheRootBelongsToTheParser) {
    const XMLNode* root = parser.parseString("<r/>");
    EXPECT_EQ(parser.getRootNode(), root);
    EXPECT_EQ(parser.getRootNode(), root);
}

TEST_F(SAXToNodeParserTree, WithoutAParseThereIsAnEmptyRootOnDemand) {
    XMLNode* const root = parser.getRootNode();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->name, "");
    EXPECT_TRUE(root->children.empty());
    EXPECT_EQ(parser.getRootNode(), root);
    EXPECT_EQ(parse("<r/>").name, "r");
}

TEST_F(SAXToNodeParserTree, AFailedParseLeavesThePartThatWasRead) {
    EXPECT_EQ(thrownBy([&] { parse("<a>x<b>y</b><c>z"); }).type,
              "DomException");
    const XMLNode& root = *parser.getRootNode();
    EXPECT_EQ(root.name, "a");
    EXPECT_EQ(root.text, "x");
    ASSERT_EQ(root.children.size(), 2u);
    EXPECT_EQ(root.children[0]->text, "y");
    EXPECT_EQ(root.children[1]->name, "c");
}

TEST_F(SAXToNodeParserTree, ManyParsersWorkAtOnce) {
    std::vector<std::string> texts(4);
    std::vector<std::thread> threads;
    for (std::string& text : texts) {
        threads.emplace_back([&text] {
            for (int round = 0; round < 20; ++round) {
                SAXToNodeParser own;
                text += own.parseString("<r><c>x</c></r>")->children[0]->text;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(texts, std::vector<std::string>(4, std::string(20, 'x')));
}

template <auto member>
struct ReaderOfParser {
    friend auto& readerOf(SAXToNodeParser& parser) { return parser.*member; }
};
auto& readerOf(SAXToNodeParser& parser);
template struct ReaderOfParser<&SAXToNodeParser::reader>;

TEST_F(SAXToNodeParserTree, TheReaderWorksWithItsDefaults) {
    parse("<r/>");
    xercesc::SAX2XMLReader& reader = *readerOf(parser);
    const std::unique_ptr<xercesc::SAX2XMLReader> untouched(
        xercesc::XMLReaderFactory::createXMLReader());
    for (const XMLCh* feature :
         {xercesc::XMLUni::fgSAX2CoreValidation,
          xercesc::XMLUni::fgSAX2CoreNameSpaces,
          xercesc::XMLUni::fgSAX2CoreNameSpacePrefixes,
          xercesc::XMLUni::fgXercesDynamic, xercesc::XMLUni::fgXercesSchema,
          xercesc::XMLUni::fgXercesLoadExternalDTD,
          xercesc::XMLUni::fgXercesContinueAfterFatalError}) {
        EXPECT_EQ(reader.getFeature(feature), untouched->getFeature(feature))
            << transcodeToString(feature, false);
    }
    EXPECT_TRUE(reader.getFeature(xercesc::XMLUni::fgSAX2CoreNameSpaces));
    EXPECT_EQ(reader.getEntityResolver(), nullptr);
    EXPECT_EQ(reader.getDTDHandler(), nullptr);
    EXPECT_EQ(reader.getLexicalHandler(), nullptr);
    EXPECT_EQ(reader.getDeclarationHandler(), nullptr);
}

TEST_F(SAXToNodeParserTree, ASecondParseLeavesTheFirstReaderBehind) {
    EXPECT_EQ(parse("<a/>").name, "a");
    const std::unique_ptr<xercesc::SAX2XMLReader> leftBehind(
        readerOf(parser).get());
    EXPECT_EQ(parse("<b><c/></b>").name, "b");
    EXPECT_NE(readerOf(parser).get(), leftBehind.get());
    EXPECT_EQ(leftBehind->getContentHandler(), &parser);
    EXPECT_EQ(leftBehind->getErrorHandler(), &parser);
}

TEST_F(SAXToNodeParserTree, ASecondParseFreesTheFirstTreeBeforeItStarts) {
    EXPECT_EQ(parse("<a/>").name, "a");
    const std::unique_ptr<xercesc::SAX2XMLReader> leftBehind(
        readerOf(parser).get());
    EXPECT_EQ(thrownBy([&] { parse(""); }).type, "DomException");
    EXPECT_EQ(parser.getRootNode()->name, "");
}

TEST_F(SAXToNodeParserTree, ASecondParseHasABudgetOfItsOwn) {
    TreeBudget::setLimits(1, 700);
    const std::string document = "<a>" + std::string(300, 'x') + "</a>";
    EXPECT_EQ(parse(document).text.size(), 300u);
    const std::unique_ptr<xercesc::SAX2XMLReader> leftBehind(
        readerOf(parser).get());
    EXPECT_EQ(thrownBy([&] { parse(document); }), nothingThrown);
    TreeBudget::liftLimits();
}

TEST(SAXToNodeParserPlatform, ANewParserNeedsNone) {
    ASSERT_FALSE(OvMemTest::xmlPlatformRuns());
    SAXToNodeParser parser;
    EXPECT_EQ(parser.getRootNode()->name, "");
}

TEST(SAXToNodeParserPlatform, WithoutOneAParseIsRefused) {
    const Thrown refused{"DomException", 0,
                         "XML parser platform is not initialised"};
    for (const int platforms : {0, 1}) {
        if (platforms > 0)
            XmlPlatform();
        ASSERT_FALSE(OvMemTest::xmlPlatformRuns());
        SAXToNodeParser parser;
        EXPECT_EQ(thrownBy([&] { parser.parseString("<r/>"); }), refused);
        EXPECT_EQ(thrownBy([&] { parser.parseString(""); }), refused);
        EXPECT_EQ(thrownBy([&] { parser.parseFile("none.xml"); }), refused);
    }
}

TEST(SAXToNodeParserPlatform, OneStartedLaterIsGoodEnough) {
    SAXToNodeParser parser;
    EXPECT_EQ(thrownBy([&] { parser.parseString("<r/>"); }).type,
              "DomException");
    const XmlPlatform platform;
    SAXToNodeParser another;
    EXPECT_EQ(another.parseString("<r/>")->name, "r");
}

// The heap of the XML library. It remembers its largest block, and is empty
// on demand.
class WatchedHeap : public xercesc::MemoryManager {
public:
    void* allocate(XMLSize_t size) override {
        if (empty)
            throw xercesc::OutOfMemoryException();
        largest = std::max(largest, size);
        return ::operator new(size);
    }
    void deallocate(void* block) override { ::operator delete(block); }
    xercesc::MemoryManager* getExceptionMemoryManager() override {
        return this;
    }

    XMLSize_t largest = 0;
    bool empty = false;
};

class SAXToNodeParserHeap : public testing::Test {
protected:
    SAXToNodeParserHeap() {
        xercesc::XMLPlatformUtils::Initialize(
            xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr, &heap);
    }
    ~SAXToNodeParserHeap() override { xercesc::XMLPlatformUtils::Terminate(); }

    WatchedHeap heap;
};

TEST_F(SAXToNodeParserHeap, TheTextIsParsedInPlace) {
    std::string xml = "<r>";
    while (xml.size() < std::size_t{1} << 20)
        xml += "<child k=\"v\">text</child>";
    xml += "</r>";
    SAXToNodeParser parser;
    EXPECT_EQ(parser.parseString(xml)->children.size(), (xml.size() - 7) / 25);
    EXPECT_GT(heap.largest, 0u);
    EXPECT_LT(heap.largest, xml.size() / 2);
}

// Runs out of memory while the element "c" begins.
class StarvingParser : public SAXToNodeParser {
public:
    explicit StarvingParser(WatchedHeap& heapToEmpty) : heap(heapToEmpty) {}

    void startElement(const XMLCh* uri, const XMLCh* localname,
                      const XMLCh* qname,
                      const xercesc::Attributes& attributes) override {
        heap.empty = *localname == u'c';
        try {
            SAXToNodeParser::startElement(uri, localname, qname, attributes);
        } catch (...) {
            heap.empty = false;
            throw;
        }
    }

private:
    WatchedHeap& heap;
};

TEST_F(SAXToNodeParserHeap, AnExceptionOfTheXmlLibraryPassesUnchanged) {
    StarvingParser parser(heap);
    EXPECT_THROW(parser.parseString("<r>x<c k='v'/></r>"),
                 xercesc::OutOfMemoryException);
    EXPECT_EQ(parser.getRootNode()->name, "r");
    EXPECT_EQ(parser.getRootNode()->text, "x");
    EXPECT_TRUE(parser.getRootNode()->children.empty());
}

}  // namespace
