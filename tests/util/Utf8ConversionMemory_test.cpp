#include <cstdlib>
#include <new>
#include <string>

#include <gtest/gtest.h>
#include <unicode/uclean.h>

#include "OvMemCppBinding/util/Utf8Conversion.h"
#include "tests/support/RunInChild.h"
#include "tests/support/Thrown.h"

// What ICU allocates is counted, and one allocation of its own or of the
// library may fail. Each test is a process of its own, since ICU wants to be
// told before its first use.

namespace {

int newsUntilFailure = 0;  // 0: none fails

}  // namespace

void* operator new(std::size_t size) {
    if (newsUntilFailure > 0 && --newsUntilFailure == 0)
        throw std::bad_alloc();
    if (void* block = std::malloc(size > 0 ? size : 1))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;
using OvMemTest::runInChild;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;

struct IcuHeap {
    int allocations = 0;
    int failing = 0;  // the number of the one that fails, from 1
    int live = 0;
};

IcuHeap heap;

void* allocate(const void*, std::size_t size) {
    if (++heap.allocations == heap.failing)
        return nullptr;
    void* block = std::malloc(size);
    heap.live += block != nullptr;
    return block;
}

void* reallocate(const void*, void* block, std::size_t size) {
    if (block == nullptr)
        return allocate(nullptr, size);
    return ++heap.allocations == heap.failing ? nullptr
                                              : std::realloc(block, size);
}

void release(const void*, void* block) {
    heap.live -= block != nullptr;
    std::free(block);
}

void countFromNowOn() {
    UErrorCode error = U_ZERO_ERROR;
    u_setMemoryFunctions(nullptr, allocate, reallocate, release, &error);
    ASSERT_EQ(error, U_ZERO_ERROR);
}

// What ICU holds when it holds no caches.
int heldByConverters() {
    u_cleanup();
    return heap.live;
}

const Thrown noMemory{"Utf8ConversionException", 0,
                      "Error opening converter U_MEMORY_ALLOCATION_ERROR\n"};

TEST(Utf8ConversionMemory, AConversionLeavesNothingBehind) {
    runInChild([] {
        countFromNowOn();
        EXPECT_EQ(toUtf8("a\xC3\xA9", 3), "a\xC3\xA9");
        EXPECT_EQ(fromUtf8("a\xC3\xA9", 3), "a\xC3\xA9");
        EXPECT_GT(heap.allocations, 1);
        EXPECT_EQ(heldByConverters(), 0);
    });
}

TEST(Utf8ConversionMemory, TheFirstConverterMayLackMemory) {
    runInChild([] {
        countFromNowOn();
        heap.failing = 1;
        EXPECT_EQ(thrownBy([] { toUtf8("a", 1); }), noMemory);
        EXPECT_EQ(heldByConverters(), 0);
    });
}

TEST(Utf8ConversionMemory, TheSecondConverterMayLackMemory) {
    runInChild([] {
        countFromNowOn();
        heap.failing = 2;
        EXPECT_EQ(thrownBy([] { fromUtf8("a", 1); }), noMemory);
        EXPECT_EQ(heldByConverters(), 0);
    });
}

TEST(Utf8ConversionMemory, AFailureDoesNotOutliveItsCall) {
    runInChild([] {
        countFromNowOn();
        heap.failing = 1;
        EXPECT_EQ(thrownBy([] { toUtf8("a", 1); }), noMemory);
        EXPECT_EQ(toUtf8("a", 1), "a");
        EXPECT_EQ(heldByConverters(), 0);
    });
}

TEST(Utf8ConversionMemory, AConversionCutShortLeavesNothingBehind) {
    runInChild([] {
        countFromNowOn();
        const std::string text(50000, 'x');
        bool converted = false;
        int failures = 0;
        while (!converted && failures < 100) {
            newsUntilFailure = failures + 1;
            try {
                converted = toUtf8(text.data(), 50000) == text;
            } catch (const std::bad_alloc&) {
                ++failures;
            }
            newsUntilFailure = 0;
        }
        EXPECT_TRUE(converted);
        EXPECT_GT(failures, 2) << "two buffers and the result";
        EXPECT_EQ(heldByConverters(), 0);
    });
}

}  // namespace
