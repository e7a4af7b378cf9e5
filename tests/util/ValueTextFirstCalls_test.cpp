#include <latch>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/ValueText.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;

// Alone in its program, so that these calls really are the first.
TEST(ValueTextFirstCalls, MayComeFromManyThreadsAtOnce) {
    constexpr int threadCount = 16;
    std::latch start(threadCount);
    std::vector<std::string> written(threadCount);
    std::vector<double> read(threadCount);
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < threadCount; ++index) {
        threads.emplace_back([&, index] {
            start.arrive_and_wait();
            written[index] = toString(0.5) + " " + toString(0.1f);
            read[index] = toDouble("0.5") + static_cast<double>(toFloat("2"));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(written, std::vector<std::string>(threadCount,
                                                "5.00000000000000000e-01 "
                                                "1.00000001490116119e-01"));
    EXPECT_EQ(read, std::vector<double>(threadCount, 2.5));
}

}  // namespace
