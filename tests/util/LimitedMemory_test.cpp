#include "OvMemCppBinding/util/LimitedMemory.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

#include "tests/support/Thrown.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::LimitedMemory;
using OvMemTest::nothingThrown;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;

Thrown beyond(const std::string& bytes) {
    return {"DomException", 0,
            "XmlPlatformGuard: the XML library may hold no more than " + bytes +
                " bytes"};
}

std::size_t bytesInUse() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

// What is held at the start of each test is held at its end.
class LimitedMemoryTest : public testing::Test {
protected:
    LimitedMemoryTest() : before(memory.held()) {}
    ~LimitedMemoryTest() override {
        memory.liftLimit();
        EXPECT_EQ(memory.held(), before);
    }

    LimitedMemory& memory = LimitedMemory::instance();
    const std::size_t before;
};

}  // namespace

TEST_F(LimitedMemoryTest, ThereIsOneForTheProcess) {
    EXPECT_EQ(&memory, &LimitedMemory::instance());
    EXPECT_EQ(memory.getExceptionMemoryManager(), &memory);
}

TEST_F(LimitedMemoryTest, HoldsNothingAtFirst) {
    EXPECT_EQ(before, 0U);
}

TEST_F(LimitedMemoryTest, HoldsTheBytesThatWereAskedFor) {
    void* const first = memory.allocate(100);
    void* const second = memory.allocate(23);
    EXPECT_EQ(memory.held(), before + 123);
    memory.deallocate(first);
    EXPECT_EQ(memory.held(), before + 23);
    memory.deallocate(second);
    memory.deallocate(nullptr);
}

TEST_F(LimitedMemoryTest, GivesBackWhatIsDeallocated) {
    const std::size_t inUse = bytesInUse();
    memory.deallocate(memory.allocate(100000));
    EXPECT_EQ(bytesInUse(), inUse);
}

TEST_F(LimitedMemoryTest, WhatABlockHasBesideItsSizeDoesNotCount) {
    memory.limitGrowth(100);
    void* const block = memory.allocateBehind(1000, 100);
    EXPECT_EQ(memory.held(), before + 100);
    std::memset(block, 0x5A, 1100);
    EXPECT_EQ(thrownBy([&] { memory.allocateBehind(1000, 1); }), beyond("100"));
    memory.deallocate(block);
}

TEST_F(LimitedMemoryTest, BlocksAreAlignedForAnything) {
    for (const std::size_t size : {0U, 1U, 7U, 16U, 1000U}) {
        void* const block = memory.allocate(size);
        EXPECT_EQ(
            reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t),
            0U);
        std::memset(block, 0x5A, size);
        memory.deallocate(block);
    }
}

TEST_F(LimitedMemoryTest, TheLimitItselfMayBeReached) {
    memory.limitGrowth(100);
    memory.deallocate(memory.allocate(100));
    void* const first = memory.allocate(60);
    void* const second = memory.allocate(40);
    EXPECT_EQ(thrownBy([&] { memory.allocate(1); }), beyond("100"));
    memory.deallocate(first);
    EXPECT_EQ(thrownBy([&] { memory.allocate(61); }), beyond("100"));
    memory.deallocate(memory.allocate(60));
    memory.deallocate(second);
}

TEST_F(LimitedMemoryTest, WhatIsHeldAlreadyDoesNotCount) {
    void* const early = memory.allocate(1000);
    memory.limitGrowth(10);
    memory.deallocate(memory.allocate(10));
    EXPECT_EQ(thrownBy([&] { memory.allocate(11); }), beyond("10"));
    memory.deallocate(early);
}

TEST_F(LimitedMemoryTest, WhatIsHeldCountsBesideTheLargestBlockThereIs) {
    void* const early = memory.allocate(1000);
    memory.limitGrowth(std::numeric_limits<std::ptrdiff_t>::max());
    const std::size_t rest =
        std::numeric_limits<std::ptrdiff_t>::max() - before - 1000;
    EXPECT_EQ(thrownBy([&] { memory.allocate(rest + 1); }),
              beyond("9223372036854775807"));
    memory.deallocate(early);
}

TEST_F(LimitedMemoryTest, ALimitOfNothingLeavesNothing) {
    memory.limitGrowth(0);
    EXPECT_EQ(thrownBy([&] { memory.allocate(1); }), beyond("0"));
}

TEST_F(LimitedMemoryTest, SizesThatNoBlockCanHaveAreRefused) {
    const auto most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t size : {most, most - 15, most / 2 + 1}) {
        EXPECT_EQ(thrownBy([&] { memory.allocate(size); }),
                  beyond("9223372036854775807"));
    }
    memory.limitGrowth(most);
    EXPECT_EQ(thrownBy([&] { memory.allocate(most); }),
              beyond(std::to_string(most)));
}

// A sanitizer ends the process rather than refuse.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(LimitedMemoryTest, WithoutMemoryItThrowsAsTheXmlLibraryItself) {
    const auto tooMuch = std::numeric_limits<std::ptrdiff_t>::max() -
                         static_cast<std::ptrdiff_t>(before);
    EXPECT_EQ(
        thrownBy([&] { memory.allocate(static_cast<std::size_t>(tooMuch)); }),
        (Thrown{"OutOfMemoryException", 0, ""}));
}
#endif

TEST_F(LimitedMemoryTest, AnyNumberOfThreadsMayAllocate) {
    memory.limitGrowth(8 * 64);
    std::vector<std::thread> threads;
    std::vector<Thrown> thrown(8);
    for (Thrown& result : thrown) {
        threads.emplace_back([this, &result] {
            result = thrownBy([this] {
                for (int i = 0; i < 10000; ++i) {
                    memory.deallocate(memory.allocate(64));
                }
            });
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(thrown, std::vector<Thrown>(8, nothingThrown));
}
