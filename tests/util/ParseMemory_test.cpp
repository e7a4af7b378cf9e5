#include "OvMemCppBinding/util/ParseMemory.h"

#include <chrono>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/LimitedMemory.h"
#include "tests/support/Thrown.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::LimitedMemory;
using Orvane::Net::OvModelEventManager::Util::ParseMemory;
using Orvane::Net::OvModelEventManager::Util::ParseTime;
using OvMemTest::nothingThrown;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;

// What the source holds before each test it holds after it.
class ParseMemoryTest : public testing::Test {
protected:
    ParseMemoryTest() : before(source.held()) {}
    ~ParseMemoryTest() override {
        ParseTime::liftLimit();
        source.liftLimit();
        EXPECT_EQ(source.held(), before);
    }

    LimitedMemory& source = LimitedMemory::instance();
    const std::size_t before;
    ParseTime time;
};

}  // namespace

TEST_F(ParseMemoryTest, GivesBackWhatWasNotDeallocated) {
    {
        ParseMemory memory(source, time);
        std::vector<void*> blocks;
        for (int i = 0; i < 10; ++i) {
            blocks.push_back(memory.allocate(100));
        }
        for (const std::size_t freed : {0U, 4U, 9U}) {
            memory.deallocate(blocks[freed]);
        }
        EXPECT_EQ(source.held(), before + 700);
    }
    EXPECT_EQ(source.held(), before);
}

TEST_F(ParseMemoryTest, GivesBackEachBlockWhenItIsDeallocated) {
    ParseMemory memory(source, time);
    void* const first = memory.allocate(100);
    EXPECT_EQ(source.held(), before + 100);
    memory.deallocate(memory.allocate(1000));
    EXPECT_EQ(source.held(), before + 100);
    memory.deallocate(first);
    EXPECT_EQ(source.held(), before);
    memory.deallocate(nullptr);
}

TEST_F(ParseMemoryTest, BlocksAreAlignedForAnythingAndWhole) {
    ParseMemory memory(source, time);
    std::vector<void*> blocks;
    for (const std::size_t size : {0U, 1U, 7U, 16U, 1000U}) {
        blocks.push_back(memory.allocate(size));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back()) %
                      alignof(std::max_align_t),
                  0U);
        std::memset(blocks.back(), 0x5A, size);
    }
    for (void* const block : blocks) {
        memory.deallocate(block);
    }
    EXPECT_EQ(source.held(), before);
}

TEST_F(ParseMemoryTest, IsRefusedWhatTheSourceRefuses) {
    ParseMemory memory(source, time);
    source.limitGrowth(100);
    memory.deallocate(memory.allocate(100));
    const Thrown beyond{
        "DomException", 0,
        "XmlPlatformGuard: the XML library may hold no more than 100 bytes"};
    const auto most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t size : {std::size_t{101}, most - 1, most}) {
        EXPECT_EQ(thrownBy([&] { memory.allocate(size); }), beyond) << size;
    }
}

TEST_F(ParseMemoryTest, ExceptionsHaveTheirMemoryFromTheSource) {
    ParseMemory memory(source, time);
    EXPECT_EQ(memory.getExceptionMemoryManager(), &source);
}

// What unwinds the stack afterwards may need memory.
TEST_F(ParseMemoryTest, WhenTheTimeIsOverItRefusesOnce) {
    ParseTime::setLimit(std::chrono::milliseconds(0));
    ParseTime over;
    ParseMemory memory(source, over);
    const auto allocateOften = [&memory] {
        for (int i = 0; i < 1000; ++i) {
            memory.deallocate(memory.allocate(1));
        }
    };
    EXPECT_EQ(thrownBy(allocateOften),
              (Thrown{"DomException", 0,
                      "XmlPlatformGuard: the XML library may take no more "
                      "than 0 ms of processor time for a document"}));
    EXPECT_EQ(thrownBy(allocateOften), nothingThrown);
}
