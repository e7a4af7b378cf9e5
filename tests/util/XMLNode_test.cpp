#include "OvMemCppBinding/util/XMLNode.h"

#include <memory>
#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "tests/util/SmallStack.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::XMLNode;

static_assert(!std::is_polymorphic_v<XMLNode>);
static_assert(!std::is_copy_constructible_v<XMLNode>);
static_assert(!std::is_copy_assignable_v<XMLNode>);
static_assert(!std::is_move_constructible_v<XMLNode>);

XMLNode* addChild(XMLNode& parent, const std::string& name) {
    auto* child = new XMLNode;
    child->name = name;
    child->parent = &parent;
    parent.children.push_back(child);
    return child;
}

std::string printed(const XMLNode& node, const std::string& indent) {
    std::ostringstream stream;
    node.print(stream, indent);
    return stream.str();
}

TEST(XMLNode, BeginsEmpty) {
    const XMLNode node;
    EXPECT_EQ(node.namespaceURI, "");
    EXPECT_EQ(node.name, "");
    EXPECT_TRUE(node.children.empty());
    EXPECT_EQ(node.text, "");
    EXPECT_EQ(node.parent, nullptr);
    EXPECT_TRUE(node.attributes.empty());
}

TEST(XMLNode, KeepsAnAttribute) {
    XMLNode node;
    node.setAttribute("k", "v");
    EXPECT_TRUE(node.hasAttribute("k"));
    EXPECT_EQ(node.getAttribute("k"), "v");
    EXPECT_FALSE(node.hasAttribute("K"));
    EXPECT_EQ(node.getAttribute("K"), "");
}

TEST(XMLNode, AnAttributeSetTwiceHasItsLastValue) {
    XMLNode node;
    node.setAttribute("k", "first");
    node.setAttribute("other", "o");
    node.setAttribute("k", "");
    EXPECT_EQ(node.attributes,
              (std::map<std::string, std::string>{{"k", ""}, {"other", "o"}}));
}

TEST(XMLNode, OnlyHasAttributeTellsAbsentFromEmpty) {
    XMLNode node;
    node.setAttribute("empty", "");
    EXPECT_EQ(node.getAttribute("empty"), "");
    EXPECT_EQ(node.getAttribute("absent"), "");
    EXPECT_TRUE(node.hasAttribute("empty"));
    EXPECT_FALSE(node.hasAttribute("absent"));
}

TEST(XMLNode, LookingForAnAttributeAddsNone) {
    const XMLNode node;
    EXPECT_EQ(node.getAttribute("absent"), "");
    EXPECT_FALSE(node.hasAttribute("absent"));
    EXPECT_TRUE(node.attributes.empty());
}

TEST(XMLNode, GivesACopyOfTheValue) {
    XMLNode node;
    node.setAttribute("k", "v");
    std::string value = node.getAttribute("k");
    value += "!";
    EXPECT_EQ(node.getAttribute("k"), "v");
}

TEST(XMLNode, OrdersAttributesByTheBytesOfTheirNames) {
    XMLNode node;
    for (const char* name : {"b", "\xC3\xA9", "B", "ba", ""})
        node.setAttribute(name, "v");
    std::vector<std::string> names;
    for (const auto& attribute : node.attributes)
        names.push_back(attribute.first);
    EXPECT_EQ(names,
              (std::vector<std::string>{"", "B", "b", "ba", "\xC3\xA9"}));
}

TEST(XMLNodePrint, WritesTwoLinesForAnElementWithoutChildren) {
    XMLNode node;
    node.name = "a";
    EXPECT_EQ(printed(node, ""), "<a>\n</a>\n");
}

TEST(XMLNodePrint, IndentsAChildByTwoBlanks) {
    XMLNode outer;
    outer.name = "outer";
    addChild(outer, "inner");
    EXPECT_EQ(printed(outer, ""), R"(<outer>
  <inner>
  </inner>
</outer>
)");
}

TEST(XMLNodePrint, LeavesOutAChildThatIsNull) {
    XMLNode outer;
    outer.name = "outer";
    outer.children.push_back(nullptr);
    addChild(outer, "inner");
    EXPECT_EQ(printed(outer, ""), R"(<outer>
  <inner>
  </inner>
</outer>
)");
}

TEST(XMLNodePrint, WritesAWholeTreeInDocumentOrder) {
    XMLNode root;
    root.name = "r";
    XMLNode* first = addChild(root, "b");
    addChild(*first, "z");
    addChild(*addChild(*first, "y"), "x");
    addChild(root, "a");
    EXPECT_EQ(printed(root, "\t."), R"(	.<r>
	.  <b>
	.    <z>
	.    </z>
	.    <y>
	.      <x>
	.      </x>
	.    </y>
	.  </b>
	.  <a>
	.  </a>
	.</r>
)");
}

TEST(XMLNodePrint, WritesNeitherNamespaceNorAttributesNorText) {
    XMLNode node;
    node.name = "a";
    node.namespaceURI = "urn:u";
    node.text = "text";
    node.setAttribute("k", "v");
    EXPECT_EQ(printed(node, ""), "<a>\n</a>\n");
}

TEST(XMLNodePrint, WritesNamesAsTheyAre) {
    XMLNode node;
    node.name = "<&>";
    EXPECT_EQ(printed(node, ""), "<<&>>\n</<&>>\n");
    EXPECT_EQ(printed(XMLNode(), ""), "<>\n</>\n");
}

TEST(XMLNodePrint, StartsFromTheGivenNodeNotFromTheRoot) {
    XMLNode root;
    root.name = "r";
    const XMLNode* child = addChild(root, "c");
    EXPECT_EQ(printed(*child, ""), "<c>\n</c>\n");
}

// Keeps the text as it stood at each flush.
class FlushRecorder : public std::stringbuf {
public:
    std::vector<std::string> flushed;

protected:
    int sync() override {
        flushed.push_back(str());
        return 0;
    }
};

TEST(XMLNodePrint, FlushesEveryLine) {
    XMLNode outer;
    outer.name = "o";
    addChild(outer, "i");
    FlushRecorder buffer;
    std::ostream stream(&buffer);
    outer.print(stream, "");
    EXPECT_EQ(buffer.flushed,
              (std::vector<std::string>{"<o>\n", "<o>\n  <i>\n",
                                        "<o>\n  <i>\n  </i>\n",
                                        "<o>\n  <i>\n  </i>\n</o>\n"}));
}

TEST(XMLNodePrint, DescendsWithoutRecursion) {
    constexpr std::size_t depth = 2000;
    XMLNode root;
    std::string expected;
    XMLNode* node = &root;
    for (std::size_t level = 0; level < depth; ++level) {
        node = addChild(*node, "n");
        expected += std::string(2 * level + 2, ' ') + "<n>\n";
    }
    for (std::size_t level = depth; level > 0; --level)
        expected += std::string(2 * level, ' ') + "</n>\n";
    std::string text;
    OvMemTest::onSmallStack([&] { text = printed(root, ""); });
    EXPECT_TRUE(text == "<>\n" + expected + "</>\n");
}

TEST(XMLNode, FreesAnyDepthInConstantStackSpace) {
    auto root = std::make_unique<XMLNode>();
    XMLNode* node = root.get();
    for (int level = 0; level < 1000000; ++level) {
        if (level % 100 == 0)
            addChild(*node, "leaf");
        node = addChild(*node, "n");
    }
    bool ended = false;
    OvMemTest::onSmallStack([&] {
        root.reset();
        ended = true;
    });
    EXPECT_TRUE(ended);
}

}  // namespace
