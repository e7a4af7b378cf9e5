#include "emulator/OvMemBinding/LastError.h"

#include <new>
#include <string>

#include <gtest/gtest.h>

#include "tests/emulator/CountedHeap.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::CountedHeap;

namespace {

const HostHeap heap{&CountedHeap::allocate, &CountedHeap::release};

}  // namespace

TEST(LastError, WithoutAnErrorThereIsNoText) {
    CountedHeap counted;
    LastError error;
    EXPECT_EQ(error.handOut(&heap), nullptr);
    EXPECT_EQ(error.handOut(nullptr), nullptr);
    EXPECT_EQ(counted.allocations(), 0U);
}

TEST(LastError, TheTextHandedOutLivesOnTheHostsHeap) {
    CountedHeap counted;
    LastError error;
    error.set("It failed.");
    EXPECT_EQ(counted.live(), 0U);
    EXPECT_STREQ(error.handOut(&heap), "It failed.");
    EXPECT_EQ(counted.live(), 1U);
    EXPECT_STREQ(error.handOut(&heap), "It failed.");
    EXPECT_EQ(counted.live(), 1U);
    error.clear();
    EXPECT_EQ(counted.live(), 0U);
    EXPECT_EQ(error.handOut(&heap), nullptr);
}

TEST(LastError, WithoutAHeapTheTextIsStillThere) {
    LastError error;
    error.set("It failed.");
    EXPECT_STREQ(error.handOut(nullptr), "It failed.");
}

TEST(LastError, ANullTextMeansThatMemoryRanOut) {
    LastError error;
    error.set(nullptr);
    EXPECT_STREQ(error.handOut(nullptr),
                 "The emulator ran out of memory. Free memory or send smaller "
                 "requests, then repeat the call.");
}

TEST(LastError, AHostWithoutMemoryGetsNoText) {
    CountedHeap counted;
    LastError error;
    error.set("It failed.");
    counted.failFromNowOn();
    EXPECT_THROW(error.handOut(&heap), std::bad_alloc);
}
