#include "tests/support/Repeat.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace OvMemTest {

Rounds::Rounds(std::uint64_t first, std::uint64_t count)
    : current(first - 1), left(count) {
    if (const char* only = std::getenv("OVMEM_REPEAT")) {
        current = std::strtoull(only, nullptr, 10) - 1;
        left = 1;
    }
}

bool Rounds::next() {
    if (left == 0) {
        return false;
    }
    --left;
    ++current;
    return true;
}

std::string Rounds::how() const {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    return "OVMEM_REPEAT=" + std::to_string(current) + " " +
           ::testing::internal::GetArgvs().at(0) +
           " --gtest_filter=" + test->test_suite_name() + "." + test->name();
}

}  // namespace OvMemTest
