#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/XMLNode.h"

namespace {

// The blocks freed while a test watches, in their order.
class FreedBlocks {
public:
    void watch() {
        count = 0;
        watching = true;
    }

    void add(void* block) {
        if (watching && count < blocks.size())
            blocks[count++] = block;
    }

    std::vector<void*> take() {
        watching = false;
        return std::vector<void*>(blocks.data(), blocks.data() + count);
    }

private:
    std::array<void*, 4096> blocks{};
    std::size_t count = 0;
    bool watching = false;
};

FreedBlocks freedBlocks;

void* allocate(std::size_t size) {
    if (void* block = std::malloc(std::max<std::size_t>(size, 1)))
        return block;
    throw std::bad_alloc();
}

void release(void* block) {
    freedBlocks.add(block);
    std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}

void operator delete(void* block) noexcept {
    release(block);
}

void operator delete(void* block, std::size_t) noexcept {
    release(block);
}

namespace {

using Orvane::Net::OvModelEventManager::Util::XMLNode;

class XMLNodeDestruction : public testing::Test {
protected:
    XMLNode* add(XMLNode* parent, const std::string& name) {
        auto* node = new XMLNode;
        names[node] = name;
        node->parent = parent;
        if (parent != nullptr)
            parent->children.push_back(node);
        return node;
    }

    // The names of the nodes in the order in which deleting `root` frees them.
    std::vector<std::string> freedBy(XMLNode* root) {
        freedBlocks.watch();
        delete root;
        std::vector<std::string> freed;
        for (void* block : freedBlocks.take()) {
            if (names.count(block) != 0)
                freed.push_back(names[block]);
        }
        return freed;
    }

private:
    std::map<void*, std::string> names;
};

TEST_F(XMLNodeDestruction, FreesChildrenFirstToLastEachWithItsWholeTree) {
    XMLNode* root = add(nullptr, "r");
    XMLNode* a = add(root, "a");
    add(a, "a1");
    XMLNode* a2 = add(a, "a2");
    add(a2, "a2x");
    add(a2, "a2y");
    add(a, "a3");
    add(root, "b");
    add(add(root, "c"), "c1");
    EXPECT_EQ(freedBy(root),
              (std::vector<std::string>{"a1", "a2x", "a2y", "a2", "a3", "a",
                                        "b", "c1", "c", "r"}));
}

TEST_F(XMLNodeDestruction, FreesAnyTreeNodeByNodeExactlyOnce) {
    XMLNode* root = add(nullptr, "r");
    std::vector<XMLNode*> nodes{root};
    std::vector<std::string> expected{"r"};
    for (std::size_t count = 1; count < 400; ++count) {
        expected.push_back(std::to_string(count));
        nodes.push_back(
            add(nodes[(count * 7 + 3) % nodes.size()], expected.back()));
    }
    std::vector<std::string> freed = freedBy(root);
    EXPECT_EQ(freed.back(), "r");
    std::sort(freed.begin(), freed.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(freed, expected);
}

TEST_F(XMLNodeDestruction, ToleratesChildrenThatAreNull) {
    XMLNode* root = add(nullptr, "r");
    root->children.push_back(nullptr);
    XMLNode* a = add(root, "a");
    a->children = {nullptr, nullptr};
    add(root, "b");
    root->children.push_back(nullptr);
    EXPECT_EQ(freedBy(root), (std::vector<std::string>{"a", "b", "r"}));
}

TEST_F(XMLNodeDestruction, DoesNotNeedTheParentsOfTheChildren) {
    XMLNode* root = add(nullptr, "r");
    XMLNode* a = add(root, "a");
    add(a, "a1")->parent = nullptr;
    a->parent = nullptr;
    add(root, "b")->parent = a;
    EXPECT_EQ(freedBy(root), (std::vector<std::string>{"a1", "a", "b", "r"}));
}

TEST_F(XMLNodeDestruction, LeavesTheParentAlone) {
    XMLNode* root = add(nullptr, "r");
    XMLNode* child = add(root, "c");
    add(child, "c1");
    root->children.clear();
    EXPECT_EQ(freedBy(child), (std::vector<std::string>{"c1", "c"}));
    root->text = "alive";
    EXPECT_EQ(freedBy(root), std::vector<std::string>{"r"});
}

}  // namespace
