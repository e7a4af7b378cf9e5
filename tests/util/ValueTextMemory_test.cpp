#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/ValueText.h"

namespace {

// The allocations that still succeed; all of them while it is negative.
int left = -1;

void* allocate(std::size_t size) {
    if (left == 0)
        throw std::bad_alloc();
    if (left > 0)
        --left;
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

using namespace Orvane::Net::OvModelEventManager::Util;

// With no memory, with memory for one block, for two, and so on, up to the
// first time that `code` does not throw: what it says then.
template <typename Result>
Result withAsLittleAsItNeeds(const std::function<Result()>& code) {
    for (int blocks = 0;; ++blocks) {
        try {
            left = blocks;
            Result result = code();
            left = -1;
            EXPECT_GT(blocks, 0);
            return result;
        } catch (const std::bad_alloc&) {
            left = -1;
        }
    }
}

}  // namespace

TEST(ValueTextMemory, ANumberIsWrittenWholeOrNotAtAll) {
    EXPECT_EQ(withAsLittleAsItNeeds<std::string>([] { return toString(0.5); }),
              "5.00000000000000000e-01");
    EXPECT_EQ(withAsLittleAsItNeeds<std::string>([] { return toString(0.5f); }),
              "5.00000000000000000e-01");
}

TEST(ValueTextMemory, ANumberIsReadWholeOrNotAtAll) {
    const std::string text = "0.50000000000000000000";
    EXPECT_EQ(withAsLittleAsItNeeds<double>([&] { return toDouble(text); }),
              0.5);
    EXPECT_EQ(withAsLittleAsItNeeds<float>([&] { return toFloat(text); }),
              0.5f);
    const std::string digits = "00000000000000012345";
    EXPECT_EQ(withAsLittleAsItNeeds<int>([&] { return toInt(digits); }), 12345);
}
