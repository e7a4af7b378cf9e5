#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/XMLNode.h"

namespace {

std::size_t allocations = 0;

void* allocate(std::size_t size) {
    ++allocations;
    if (void* block = std::malloc(std::max<std::size_t>(size, 1)))
        return block;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

using Orvane::Net::OvModelEventManager::Util::XMLNode;
using Orvane::Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;

// Identifiers so short that they need no memory of their own.
void addChildren(XMLNode& node, int count) {
    for (int i = 0; i < count; ++i) {
        auto child = std::make_unique<XMLNode>();
        child->name = "sharedClients";
        child->text = std::to_string(i);
        node.children.push_back(child.release());
    }
}

std::size_t allocationsOfParsing(SharedClientIDs& object, const XMLNode& node) {
    const std::size_t before = allocations;
    object.parse(node);
    return allocations - before;
}

}  // namespace

TEST(SharedClientIDsRoom, ParsingMakesItForAllChildrenAtOnce) {
    XMLNode node;
    addChildren(node, 100);
    SharedClientIDs object;
    EXPECT_EQ(allocationsOfParsing(object, node), 1U);
}

TEST(SharedClientIDsRoom, ParsingMakesItForTheNodeAndNotForTheSum) {
    XMLNode ten;
    addChildren(ten, 10);
    XMLNode eleven;
    addChildren(eleven, 11);
    SharedClientIDs object;
    object.parse(ten);
    // First for eleven, which are full with the eleventh; then for more.
    EXPECT_EQ(allocationsOfParsing(object, eleven), 2U);
}

TEST(SharedClientIDsRoom, AListThatGrowsOneByOneIsSeldomMoved) {
    SharedClientIDs object;
    const std::vector<std::string> one{"1"};
    const std::size_t before = allocations;
    for (int i = 0; i < 1000; ++i) {
        object.setSharedClients(one);
    }
    EXPECT_LE(allocations - before, 12U);
}
