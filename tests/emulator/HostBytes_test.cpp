#include "emulator/OvMemBinding/HostBytes.h"

#include <new>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "tests/emulator/CountedHeap.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::CountedHeap;

namespace {

class HostBytesTest : public testing::Test {
protected:
    CountedHeap counted;
    const HostHeap heap{&CountedHeap::allocate, &CountedHeap::release};
};

}  // namespace

TEST_F(HostBytesTest, NothingIsAllocatedBeforeTheFirstByte) {
    const HostBytes bytes(heap);
    EXPECT_EQ(bytes.view(), "");
    EXPECT_STREQ(bytes.view().data(), "");
    EXPECT_EQ(counted.allocations(), 0U);
}

TEST_F(HostBytesTest, BytesAreAppendedAndEndWithANul) {
    HostBytes bytes(heap);
    bytes.append("pump");
    bytes.append(std::string_view("\0x", 2));
    bytes.append("");
    EXPECT_EQ(bytes.view(), std::string_view("pump\0x", 6));
    EXPECT_EQ(bytes.view().data()[6], '\0');
}

TEST_F(HostBytesTest, AnEmptyTextIsATextOfTheHost) {
    HostBytes bytes(heap);
    bytes.append("");
    EXPECT_EQ(bytes.view(), "");
    EXPECT_EQ(counted.live(), 1U);
}

TEST_F(HostBytesTest, GrowthDoublesAndGivesOldBlocksBack) {
    HostBytes bytes(heap);
    std::string expected;
    for (int i = 0; i < 10000; ++i) {
        bytes.append("0123456789");
        expected += "0123456789";
    }
    EXPECT_EQ(bytes.view(), expected);
    EXPECT_LE(counted.allocations(), 20U);
    EXPECT_EQ(counted.live(), 1U);
}

TEST_F(HostBytesTest, EveryBlockGoesBack) {
    {
        HostBytes first(heap);
        first.append("first");
        HostBytes second(heap);
        second.append("second");
        second = std::move(first);
        EXPECT_EQ(second.view(), "first");
        HostBytes third(std::move(second));
        EXPECT_EQ(third.view(), "first");
        EXPECT_EQ(counted.live(), 1U);
        third.clear();
        EXPECT_EQ(third.view(), "");
        EXPECT_EQ(counted.live(), 0U);
        third.append("again");
    }
    EXPECT_EQ(counted.live(), 0U);
}

TEST_F(HostBytesTest, WithoutMemoryTheBytesStayAsTheyWere) {
    HostBytes bytes(heap);
    bytes.append("pump");
    counted.failFromNowOn();
    EXPECT_THROW(bytes.append(std::string(1000, 'x')), std::bad_alloc);
    EXPECT_EQ(bytes.view(), "pump");
}
