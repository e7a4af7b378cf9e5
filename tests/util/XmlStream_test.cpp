#include "OvMemCppBinding/util/XmlStream.h"

#include <type_traits>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/XmlEscape.h"
#include "tests/util/CommaLocale.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::escape;
using Orvane::Net::OvModelEventManager::Util::XmlStream;
using Attributes = std::vector<std::pair<std::string, std::string>>;

static_assert(std::is_base_of_v<std::stringstream, XmlStream>);
static_assert(std::has_virtual_destructor_v<XmlStream>);
static_assert(!std::is_copy_constructible_v<XmlStream>);
static_assert(!std::is_copy_assignable_v<XmlStream>);

TEST(XmlStream, ThrowsNothingThatAPlainStringStreamWouldNot) {
    XmlStream stream;
    EXPECT_EQ(stream.exceptions(), std::ios_base::goodbit);
    EXPECT_EQ(stream.rdstate(), std::ios_base::goodbit);
    stream << "before";
    EXPECT_NO_THROW(stream.setstate(std::ios_base::badbit));
    EXPECT_NO_THROW(stream << "behind");
    EXPECT_EQ(stream.str(), "before");
    stream.clear();
    EXPECT_NO_THROW(stream << static_cast<std::streambuf*>(nullptr));
    EXPECT_TRUE(stream.bad());
}

TEST(XmlStream, TakesAnExceptionMaskFromWhoeverSetsOne) {
    XmlStream stream;
    stream.exceptions(std::ios_base::badbit);
    EXPECT_THROW(stream << static_cast<std::streambuf*>(nullptr),
                 std::ios_base::failure);
}

TEST(XmlStream, BeginsEmptyBeforeItsFirstElement) {
    const XmlStream xml;
    EXPECT_EQ(xml.str(), "");
    EXPECT_TRUE(xml.isFirstElement());
    EXPECT_TRUE(xml.scopeFlags.empty());
    EXPECT_EQ(xml.getPrefix(""), "");
    EXPECT_EQ(xml.getPrefix("u"), "");
}

TEST(XmlStream, NumbersPrefixesInAscendingOrderOfTheUris) {
    XmlStream xml;
    xml.addNamespaces({"b", "a"});
    EXPECT_EQ(xml.getPrefix("a"), "ns0");
    EXPECT_EQ(xml.getPrefix("b"), "ns1");
}

TEST(XmlStream, ComparesUrisByteByByte) {
    XmlStream xml;
    xml.addNamespaces({"\xC3\xA9", "a", "Z", "ab", "a/"});
    EXPECT_EQ(xml.getPrefix("Z"), "ns0");
    EXPECT_EQ(xml.getPrefix("a"), "ns1");
    EXPECT_EQ(xml.getPrefix("a/"), "ns2");
    EXPECT_EQ(xml.getPrefix("ab"), "ns3");
    EXPECT_EQ(xml.getPrefix("\xC3\xA9"), "ns4");
}

TEST(XmlStream, KeepsAPrefixOnceGivenAndGoesOnCounting) {
    XmlStream xml;
    xml.addNamespaces({"b", "a"});
    xml.addNamespaces({"a", "c"});
    EXPECT_EQ(xml.getPrefix("a"), "ns0");
    EXPECT_EQ(xml.getPrefix("b"), "ns1");
    EXPECT_EQ(xml.getPrefix("c"), "ns2");
}

TEST(XmlStream, AddsOneNamespaceOnlyOnce) {
    XmlStream xml;
    EXPECT_TRUE(xml.addNamespace("z"));
    EXPECT_FALSE(xml.addNamespace("z"));
    EXPECT_TRUE(xml.addNamespace("a"));
    EXPECT_EQ(xml.getPrefix("z"), "ns0");
    EXPECT_EQ(xml.getPrefix("a"), "ns1");
}

TEST(XmlStream, GivesTheEmptyUriAPrefixLikeAnyOther) {
    XmlStream xml;
    EXPECT_TRUE(xml.addNamespace(""));
    EXPECT_FALSE(xml.addNamespace(""));
    EXPECT_EQ(xml.startElement("", "a"), R"(
<ns0:a xmlns:ns0="")");
}

TEST(XmlStream, WritesPrefixNumbersWithoutPadding) {
    XmlStream xml;
    for (int number = 0; number < 101; ++number)
        ASSERT_TRUE(xml.addNamespace("urn:" + std::to_string(number)));
    EXPECT_EQ(xml.getPrefix("urn:9"), "ns9");
    EXPECT_EQ(xml.getPrefix("urn:10"), "ns10");
    EXPECT_EQ(xml.getPrefix("urn:100"), "ns100");
}

// docs/irregularities.md#int-uses-the-global-locale
TEST(XmlStream, ThePrefixNumberedAThousandFollowsTheGlobalLocale) {
    const OvMemTest::CommaLocale locale;
    XmlStream xml;
    for (int number = 0; number < 1001; ++number)
        ASSERT_TRUE(xml.addNamespace("urn:" + std::to_string(number)));
    EXPECT_EQ(xml.getPrefix("urn:999"), "ns999");
    EXPECT_EQ(xml.getPrefix("urn:1000"), "ns1.000");
}

TEST(XmlStream, ForgetsANamespaceWhoseScopeIntroducedIt) {
    XmlStream xml;
    xml.scopeFlags.push_back(xml.addNamespace("u"));
    xml.popNamespaceScope("u");
    EXPECT_TRUE(xml.scopeFlags.empty());
    EXPECT_EQ(xml.getPrefix("u"), "");
    EXPECT_EQ(xml.startElement("u", "a"), "\n<a");
}

TEST(XmlStream, NeverUsesANumberTwice) {
    XmlStream xml;
    xml.scopeFlags.push_back(xml.addNamespace("u"));
    xml.popNamespaceScope("u");
    EXPECT_TRUE(xml.addNamespace("u"));
    EXPECT_EQ(xml.getPrefix("u"), "ns1");
}

TEST(XmlStream, KeepsANamespaceWhoseScopeDidNotIntroduceIt) {
    XmlStream xml;
    xml.addNamespace("u");
    xml.scopeFlags.push_back(xml.addNamespace("u"));
    xml.popNamespaceScope("u");
    EXPECT_TRUE(xml.scopeFlags.empty());
    EXPECT_EQ(xml.getPrefix("u"), "ns0");
}

TEST(XmlStream, EndsTheScopeOpenedLast) {
    XmlStream xml;
    xml.addNamespaces({"u", "v"});
    xml.scopeFlags = {true, false};
    xml.popNamespaceScope("u");
    EXPECT_EQ(xml.scopeFlags, std::deque<bool>({true}));
    EXPECT_EQ(xml.getPrefix("u"), "ns0");
    xml.popNamespaceScope("v");
    EXPECT_TRUE(xml.scopeFlags.empty());
    EXPECT_EQ(xml.getPrefix("u"), "ns0");
    EXPECT_EQ(xml.getPrefix("v"), "");
}

TEST(XmlStream, EndsAScopeOfAnUnknownNamespace) {
    XmlStream xml;
    xml.addNamespace("u");
    xml.scopeFlags.push_back(true);
    xml.popNamespaceScope("unknown");
    EXPECT_TRUE(xml.scopeFlags.empty());
    EXPECT_EQ(xml.getPrefix("u"), "ns0");
}

TEST(XmlStream, WithoutAScopeEndingOneDoesNothing) {
    XmlStream xml;
    xml.addNamespace("u");
    xml.popNamespaceScope("u");
    EXPECT_TRUE(xml.scopeFlags.empty());
    EXPECT_EQ(xml.getPrefix("u"), "ns0");
}

TEST(XmlStream, TheFirstTagWithoutNamespacesIsFirstAllTheSame) {
    XmlStream xml;
    EXPECT_EQ(xml.startElement("u", "a"), "\n<a");
    EXPECT_FALSE(xml.isFirstElement());
    EXPECT_EQ(xml.str(), "");
}

TEST(XmlStream, AnUnknownUriLeavesNoTrace) {
    XmlStream xml;
    EXPECT_EQ(xml.startElement("unknown", "a"), "\n<a");
    EXPECT_EQ(xml.endElement("unknown", "a"), "</a>");
    EXPECT_TRUE(xml.addNamespace("unknown"));
    EXPECT_EQ(xml.getPrefix("unknown"), "ns0");
}

TEST(XmlStream, DeclaresAllNamespacesOnTheFirstTagOnly) {
    XmlStream xml;
    xml.addNamespaces({"A/x", "B/y"});
    EXPECT_EQ(xml.startElement("B/y", "root"), R"(
<ns1:root xmlns:ns0="A/x" xmlns:ns1="B/y")");
    EXPECT_EQ(xml.startElement("A/x", "item"), "\n<ns0:item");
    EXPECT_EQ(xml.startElement("B/y", "root"), "\n<ns1:root");
}

TEST(XmlStream, DeclaresInTheOrderOfTheUrisNotOfThePrefixes) {
    XmlStream xml;
    xml.addNamespace("c");
    xml.addNamespace("a");
    xml.addNamespace("b");
    EXPECT_EQ(xml.startElement("a", "r"), R"(
<ns1:r xmlns:ns1="a" xmlns:ns2="b" xmlns:ns0="c")");
}

TEST(XmlStream, NeverDeclaresANamespaceAddedAfterTheFirstTag) {
    XmlStream xml;
    EXPECT_EQ(xml.startElement("", "r"), "\n<r");
    xml.addNamespace("late");
    EXPECT_EQ(xml.startElement("late", "a"), "\n<ns0:a");
}

TEST(XmlStream, WritesUrisAsTheyAre) {
    XmlStream xml;
    xml.addNamespace("a&\"<b");
    EXPECT_EQ(xml.startElement("", "r"), "\n<r xmlns:ns0=\"a&\"<b\"");
}

TEST(XmlStream, TakesANameWithAColonAsItStands) {
    XmlStream xml;
    xml.addNamespace("u");
    EXPECT_EQ(xml.startElement("u", "x:y"), "\n<x:y xmlns:ns0=\"u\"");
    EXPECT_EQ(xml.startElement("u", "x:y"), "\n<x:y");
    EXPECT_EQ(xml.endElement("u", "x:y"), "</x:y>");
    EXPECT_EQ(xml.endElement("u", ":"), "</:>");
}

TEST(XmlStream, BuildsAWholeStartTagFromAttributesInTheirOrder) {
    XmlStream xml;
    xml.addNamespace("u");
    const Attributes attributes{{"k", "a<b"}, {"a", "\"&\""}, {"k", ""}};
    EXPECT_EQ(xml.startElement("u", "a", attributes),
              "\n<ns0:a xmlns:ns0=\"u\" k=\"a<b\" a=\"\"&\"\" k=\"\">");
    EXPECT_FALSE(xml.isFirstElement());
    EXPECT_EQ(xml.startElement("u", "a", attributes),
              "\n<ns0:a k=\"a<b\" a=\"\"&\"\" k=\"\">");
}

TEST(XmlStream, BuildsAWholeStartTagWithoutAttributes) {
    XmlStream xml;
    EXPECT_EQ(xml.startElement("u", "a", Attributes()), "\n<a>");
}

TEST(XmlStream, BuildsAnAttributeWithoutEscaping) {
    XmlStream xml;
    EXPECT_EQ(xml.attribute("k", "a<b"), R"( k="a<b")");
    EXPECT_EQ(xml.attribute("", ""), R"( ="")");
}

TEST(XmlStream, ClosesAStartTagOrAnEmptyElement) {
    XmlStream xml;
    EXPECT_EQ(xml.closeStartTag(true), "/>");
    EXPECT_EQ(xml.closeStartTag(false), ">");
}

TEST(XmlStream, BuildsAnEndTagWithThePrefixAndNoLineFeed) {
    XmlStream xml;
    xml.addNamespace("u");
    EXPECT_EQ(xml.endElement("u", "a"), "</ns0:a>");
    EXPECT_TRUE(xml.isFirstElement());
}

TEST(XmlStream, BuildingTagsLeavesTheStreamUntouched) {
    XmlStream xml;
    xml << "before";
    xml.addNamespace("u");
    xml.startElement("u", "a");
    xml.startElement("u", "a", {{"k", "v"}});
    xml.attribute("k", "v");
    xml.closeStartTag(true);
    xml.endElement("u", "a");
    EXPECT_EQ(xml.str(), "before");
}

TEST(XmlStream, HoldsAWholeDocument) {
    XmlStream xml;
    xml.addNamespaces({"urn:fleet", "urn:crew"});
    xml << xml.startElement("urn:fleet", "ships") << xml.closeStartTag(false)
        << xml.startElement("urn:fleet", "ship", {{"name", escape("A & B")}})
        << xml.startElement("urn:crew", "cook") << xml.attribute("name", "C")
        << xml.closeStartTag(true) << xml.endElement("urn:fleet", "ship")
        << xml.endElement("urn:fleet", "ships");
    EXPECT_EQ(xml.str(), R"(
<ns1:ships xmlns:ns0="urn:crew" xmlns:ns1="urn:fleet">
<ns1:ship name="A &amp; B">
<ns0:cook name="C"/></ns1:ship></ns1:ships>)");
}

TEST(XmlStream, IsAnInputStreamToo) {
    XmlStream xml;
    xml << xml.startElement("", "a") << xml.closeStartTag(true);
    std::string text;
    xml >> text;
    EXPECT_EQ(text, "<a/>");
}

}  // namespace
