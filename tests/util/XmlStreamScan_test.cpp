#include <random>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/XmlStream.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::XmlStream;

constexpr std::size_t notFound = std::string::npos;

std::string rootNamespace(const std::string& document) {
    return XmlStream::getRootNamespace(document);
}

std::size_t startTag(const std::string& document, const std::string& key) {
    return XmlStream::findElementTag(document, key, true);
}

std::size_t endTag(const std::string& document, const std::string& key) {
    return XmlStream::findElementTag(document, key, false);
}

TEST(XmlStreamGetRootNamespace, IsTheUriDeclaredForThePrefixOfTheRoot) {
    EXPECT_EQ(rootNamespace(R"(<?xml version="1.0"?><ns0:r xmlns:ns0="U">)"),
              "U");
    EXPECT_EQ(rootNamespace(R"(<n:r xmlns:m="V" xmlns:n="U"/>)"), "U");
    EXPECT_EQ(rootNamespace("\n<ns0:E k=\"v\" xmlns:ns0=\"urn:a/b\">"),
              "urn:a/b");
}

TEST(XmlStreamGetRootNamespace, IsTheDefaultNamespaceOfARootWithoutPrefix) {
    EXPECT_EQ(rootNamespace(R"(<r xmlns="D">)"), "D");
    EXPECT_EQ(rootNamespace(R"(<r xmlns:n="U" xmlns="D">)"), "D");
    EXPECT_EQ(rootNamespace(R"(<r xmlns="">)"), "");
}

TEST(XmlStreamGetRootNamespace, IsEmptyForATagThatClosesBeforeAnySpace) {
    EXPECT_EQ(rootNamespace("<r>"), "");
    EXPECT_EQ(rootNamespace(R"(<r> <c xmlns="D"/></r>)"), "");
    EXPECT_EQ(rootNamespace("<r\txmlns=\"D\">"), "");
}

TEST(XmlStreamGetRootNamespace, IsEmptyWhenTheRootDeclaresNone) {
    EXPECT_EQ(rootNamespace("<r a=\"1\">"), "");
    EXPECT_EQ(rootNamespace(R"(<n:r xmlns="D" xmlns:m="V">)"), "");
    EXPECT_EQ(rootNamespace(R"(<r xmlns:n="U">)"), "");
    EXPECT_EQ(rootNamespace("<a b"), "");
}

TEST(XmlStreamGetRootNamespace, IsEmptyForATextWithoutAWholeTag) {
    EXPECT_EQ(rootNamespace(""), "");
    EXPECT_EQ(rootNamespace("no tag"), "");
    EXPECT_EQ(rootNamespace("<"), "");
    EXPECT_EQ(rootNamespace("<r"), "");
    EXPECT_EQ(rootNamespace("< "), "");
    EXPECT_EQ(rootNamespace(R"(<?xml version="1.0"?>)"), "");
}

TEST(XmlStreamGetRootNamespace, SearchesOnFromIndexOneAfterADeclaration) {
    // One character before the declaration, and the declaration itself is
    // taken for the root, which has no prefix.
    EXPECT_EQ(rootNamespace("\n<?xml version=\"1.0\"?><n:r xmlns:n=\"U\">"),
              "");
    EXPECT_EQ(rootNamespace("\n<?xml version=\"1.0\"?><n:r xmlns=\"D\">"), "D");
    EXPECT_EQ(rootNamespace(R"(<?xml-model m="1"?><n:r xmlns:n="U">)"), "U");
}

TEST(XmlStreamGetRootNamespace, ADocumentThatBeginsOtherwiseIsSearchedThere) {
    EXPECT_EQ(rootNamespace(R"(text <n:r xmlns:n="U">)"), "U");
    EXPECT_EQ(rootNamespace(R"(<!-- c --><n:r xmlns:n="U">)"), "");
    EXPECT_EQ(rootNamespace(R"(<!-- c --><r xmlns="D">)"), "D");
    EXPECT_EQ(rootNamespace(R"(<?XML ?><n:r xmlns:n="U">)"), "");
}

TEST(XmlStreamGetRootNamespace, TakesTheFirstMatchWhereverItStands) {
    EXPECT_EQ(rootNamespace(R"(<r a="1"><c xmlns="D"/></r>)"), "D");
    EXPECT_EQ(rootNamespace(R"(<r myxmlns="X" xmlns="D">)"), "X");
    EXPECT_EQ(rootNamespace(R"(<a xmlns:b="U" c="<x:y" >)"), "");
}

TEST(XmlStreamGetRootNamespace, ReadsThePrefixUpToTheFirstColon) {
    EXPECT_EQ(rootNamespace(R"(<a:b:c xmlns:a:b="V" xmlns:a="U">)"), "U");
    EXPECT_EQ(rootNamespace(R"(<:r xmlns:="U" xmlns="D">)"), "U");
    EXPECT_EQ(rootNamespace("<n:r\txmlns:n=\"U\" a=\"b\">"), "U");
}

TEST(XmlStreamGetRootNamespace, AValueWithoutItsClosingQuoteRunsToTheEnd) {
    EXPECT_EQ(rootNamespace(R"(<r xmlns="D><c/></r>)"), "D><c/></r>");
    EXPECT_EQ(rootNamespace(R"(<n:r xmlns:n="U)"), "U");
    EXPECT_EQ(rootNamespace(R"(<r xmlns=")"), "");
}

TEST(XmlStreamGetRootNamespace, UnderstandsDoubleQuotesOnly) {
    EXPECT_EQ(rootNamespace("<r xmlns='D'>"), "");
}

TEST(XmlStreamFindElementTag, FindsAStartTagByUriAndLocalName) {
    const std::string document =
        R"(<n:r xmlns:n="U" xmlns:m="V"><m:item/><n:item/></n:r>)";
    EXPECT_EQ(startTag(document, "U^r"), 0u);
    EXPECT_EQ(startTag(document, "V^item"), 29u);
    EXPECT_EQ(startTag(document, "U^item"), 38u);
    EXPECT_EQ(startTag(document, "U^absent"), notFound);
}

TEST(XmlStreamFindElementTag, FindsAnEndTagOnceItIsThere) {
    const std::string open = R"(<?xml version="1.0"?><ns0:r xmlns:ns0="U">)";
    EXPECT_EQ(startTag(open, "U^r"), 21u);
    EXPECT_EQ(endTag(open, "U^r"), notFound);
    EXPECT_EQ(endTag(open + "</ns0:r>", "U^r"), open.size());
}

TEST(XmlStreamFindElementTag, WritesNoPrefixForADefaultNamespace) {
    const std::string document = R"(<n:r xmlns:n="U" xmlns="D"><r/></n:r>)";
    EXPECT_EQ(startTag(document, "D^r"), 27u);
    EXPECT_EQ(endTag(document, "D^r"), notFound);
}

TEST(XmlStreamFindElementTag, WritesNoPrefixForAnEmptyOrUnknownUri) {
    const std::string document = R"(<n:r xmlns:n="U"><r/></n:r></r>)";
    EXPECT_EQ(startTag(document, "^r"), 17u);
    EXPECT_EQ(endTag(document, "^r"), 27u);
    EXPECT_EQ(startTag(document, "unknown^r"), 17u);
    EXPECT_EQ(endTag(document, "unknown^r"), 27u);
}

TEST(XmlStreamFindElementTag, AUriWithNoDeclarationBeforeItIsUnknown) {
    EXPECT_EQ(startTag(R"(<U/><r xmlns:n="U">)", "U^r"), 4u);
    EXPECT_EQ(startTag("U<r/>", "U^r"), 1u);
    EXPECT_EQ(startTag("xmlnsU<r/>", "U^r"), 6u);
    EXPECT_EQ(startTag("xmlns=U<r/>", "U^r"), 7u);
    EXPECT_EQ(startTag(R"(="U"<r/>)", "U^r"), 4u);
}

TEST(XmlStreamFindElementTag, ADeclarationMayOpenTheDocument) {
    EXPECT_EQ(startTag(R"(xmlns="U"<r/>)", "U^r"), 9u);
    EXPECT_EQ(startTag(R"(xmlns:p="U"<r/><p:r/>)", "U^r"), 15u);
}

TEST(XmlStreamFindElementTag, ADeclarationCutShortHasNoPrefix) {
    EXPECT_EQ(startTag("xmlns:\"U<r/>", "U^r"), 8u);
    EXPECT_EQ(startTag("xmlns:=U<r/>", "U^r"), 8u);
}

TEST(XmlStreamFindElementTag, LooksOnlyAtTheFirstOccurrenceOfTheUri) {
    EXPECT_EQ(startTag(R"(<a:U xmlns:a="U">)", "U^U"), notFound);
    EXPECT_EQ(startTag(R"(<n:r xmlns:n="U/x" xmlns:m="U"><m:r/>)", "U^r"), 0u);
}

TEST(XmlStreamFindElementTag, TakesTheNearestDeclarationBeforeTheUri) {
    EXPECT_EQ(startTag(R"(<r xmlns:a="A" xmlns:b="B"><a:i/><b:i/>)", "B^i"),
              33u);
    // An attribute between the two becomes part of the prefix.
    EXPECT_EQ(startTag(R"(<r xmlns:p="X" href="U"><p:r/>)", "U^r"), notFound);
    EXPECT_EQ(startTag(R"(<r xmlns:p="X" h="U"><p="X" h:r/>)", "U^r"), 21u);
}

TEST(XmlStreamFindElementTag, AlsoMatchesTheBeginningOfALongerName) {
    const std::string document =
        R"(<ns0:r xmlns:ns0="U"><ns0:items><ns0:item/></ns0:items>)";
    EXPECT_EQ(startTag(document, "U^item"), 21u);
    EXPECT_EQ(endTag(document, "U^item"), 43u);
}

TEST(XmlStreamFindElementTag, AKeyWithoutACaretIsUriAndNameAtOnce) {
    EXPECT_EQ(startTag("<abc/>", "abc"), 0u);
    EXPECT_EQ(startTag(R"(<r xmlns:n="abc"><n:abc/>)", "abc"), 17u);
    EXPECT_EQ(startTag(R"(<n:abc xmlns:n="abc">)", "abc"), notFound);
}

TEST(XmlStreamFindElementTag, TheFirstCaretEndsTheUri) {
    EXPECT_EQ(startTag(R"(<n:r xmlns:n="U"><n:a^b/>)", "U^a^b"), 17u);
}

TEST(XmlStreamFindElementTag, AnEmptyLocalNameFindsTheFirstTagOfThePrefix) {
    EXPECT_EQ(startTag(R"(<r xmlns:n="U"><n:a/>)", "U^"), 15u);
    EXPECT_EQ(startTag("text<r/>", "^"), 4u);
    EXPECT_EQ(startTag("text<r/>", ""), 4u);
}

TEST(XmlStreamFindElementTag, FindsNothingInAnEmptyDocument) {
    EXPECT_EQ(startTag("", "U^r"), notFound);
    EXPECT_EQ(endTag("", "^r"), notFound);
    EXPECT_EQ(endTag("", ""), notFound);
}

// The rules of getRootNamespace as single steps on positions.
std::string modelOfRootNamespace(const std::string& document) {
    const std::size_t p = document.find('<');
    if (p == notFound)
        return "";
    const std::size_t q =
        document.find('<', document.substr(p, 5) == "<?xml" ? 1 : p);
    if (q == notFound)
        return "";
    const std::string rest = document.substr(q + 1);
    if (rest.find('>') < rest.find(' '))
        return "";
    const std::string tag = rest.substr(0, rest.find(' '));
    const std::string sought =
        tag.find(':') == notFound
            ? "xmlns=\""
            : "xmlns:" + tag.substr(0, tag.find(':')) + "=\"";
    if (rest.find(sought) == notFound)
        return "";
    const std::string value = rest.substr(rest.find(sought) + sought.size());
    return value.substr(0, value.find('"'));
}

// The rules of findElementTag, one step back at a time.
std::size_t modelOfElementTag(const std::string& document,
                              const std::string& key, std::string tag) {
    const std::string uri = key.substr(0, key.find('^'));
    const std::string local = key.substr(key.find('^') + 1);
    const auto found = static_cast<std::ptrdiff_t>(document.find(uri));
    std::string prefix;
    for (auto at = found - 7; !uri.empty() && at >= 0; --at) {
        const auto begin = static_cast<std::size_t>(at);
        if (document.substr(begin, 5) != "xmlns")
            continue;
        prefix = document.substr(begin + 5,
                                 static_cast<std::size_t>(found - at) - 7);
        if (!prefix.empty() && prefix[0] == ':')
            prefix.erase(0, 1);
        break;
    }
    tag += prefix.empty() ? "" : prefix + ":";
    return document.find(tag + local);
}

std::string randomDocument(std::mt19937& random) {
    static const std::vector<std::string> pieces{
        "<",     ">",          "</",       "<?xml", " ", ":", "=\"", "\"",
        "xmlns", "xmlns:n=\"", "xmlns=\"", "n",     "U", "r", "n:r"};
    std::string document;
    for (auto count = random() % 12; count != 0; --count)
        document += pieces[random() % pieces.size()];
    return document;
}

TEST(XmlStreamScan, FollowsItsRulesOnAnyText) {
    std::mt19937 random(20090601);
    for (int round = 0; round < 50000; ++round) {
        const std::string document = randomDocument(random);
        SCOPED_TRACE(document);
        ASSERT_EQ(rootNamespace(document), modelOfRootNamespace(document));
        ASSERT_EQ(startTag(document, "U^r"),
                  modelOfElementTag(document, "U^r", "<"));
        ASSERT_EQ(endTag(document, "U^r"),
                  modelOfElementTag(document, "U^r", "</"));
    }
}

}  // namespace
