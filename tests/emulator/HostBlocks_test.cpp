#include "emulator/OvMemBinding/HostBlocks.h"

#include <cstring>

#include <gtest/gtest.h>

#include "tests/emulator/CountedHeap.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::CountedHeap;

namespace {

class HostBlocksTest : public testing::Test {
protected:
    CountedHeap heap;
    ForkLock lock;
    HostBlocks blocks{&CountedHeap::allocate, &CountedHeap::release, lock};
};

}  // namespace

TEST_F(HostBlocksTest, ABlockComesFromTheHostsHeapAndGoesBackToIt) {
    void* first = blocks.take(100);
    void* second = blocks.take(200);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    std::memset(first, 1, 100);
    std::memset(second, 2, 200);
    EXPECT_EQ(heap.live(), 2U);
    blocks.giveBack(first);
    EXPECT_EQ(heap.live(), 1U);
    blocks.giveBack(second);
    EXPECT_EQ(heap.live(), 0U);
}

TEST_F(HostBlocksTest, AHostWithoutMemoryGivesNoBlock) {
    heap.failFromNowOn();
    EXPECT_EQ(blocks.take(1), nullptr);
    blocks.giveAllBack();
}

TEST_F(HostBlocksTest, AllGoBackAtOnceAndNoneASecondTime) {
    blocks.giveBack(blocks.take(1));
    void* first = blocks.take(1);
    void* second = blocks.take(1);
    blocks.giveAllBack();
    EXPECT_EQ(heap.live(), 0U);
    const std::size_t calls = heap.calls();
    blocks.giveBack(second);
    blocks.giveBack(first);
    blocks.giveAllBack();
    EXPECT_EQ(heap.calls(), calls);
}

TEST_F(HostBlocksTest, NoneIsTakenAfterAllWentBackOrWereLeft) {
    blocks.giveAllBack();
    EXPECT_EQ(blocks.take(1), nullptr);
    HostBlocks left{&CountedHeap::allocate, &CountedHeap::release, lock};
    left.leaveAll();
    EXPECT_EQ(left.take(1), nullptr);
    EXPECT_EQ(heap.calls(), 0U);
}

TEST_F(HostBlocksTest, WhatIsLeftStaysWithTheHost) {
    static void* block = blocks.take(1);  // no leak: it is known here
    blocks.leaveAll();
    const std::size_t calls = heap.calls();
    blocks.giveBack(block);
    blocks.giveAllBack();
    EXPECT_EQ(heap.calls(), calls);
}
