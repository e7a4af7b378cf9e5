#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <iostream>

#include <gtest/gtest.h>

#include "tests/hostile/HostileReply.h"
#include "tests/hostile/HostileRun.h"

namespace OvMemTest {

namespace {

// In seconds of the processor, the one in the middle of three runs.
double timeFor(std::size_t depth) {
    const HostileReply reply{"Nested",
                             {{"<r><sharedClients>"},
                              {"<a>", depth},
                              {"</a>", depth},
                              {"</sharedClients></r>"}},
                             depthLimit(),
                             accepting({""})};
    std::array<double, 3> times{};
    for (double& time : times) {
        const HostileRun run(reply, false);
        EXPECT_TRUE(run.ended()) << run.whyNot();
        EXPECT_EQ(run.fate(), reply.bare);
        time = run.seconds();
    }
    std::ranges::sort(times);
    std::cout << depth << " deep: " << std::fixed << std::setprecision(3)
              << times[1] << " s\n";
    return times[1];
}

}  // namespace

// The XML library walks down from the root for every element, so that twice
// the depth takes four times as long or more, and a million half an hour.
TEST(NestingTime, GrowsFasterThanTheDepthWithoutTheGuard) {
    timeFor(10000);
    const double half = timeFor(20000);
    const double whole = timeFor(40000);
    EXPECT_GT(whole, 2.5 * half);
    std::cout << "1000000 deep, by the square: "
              << whole * std::pow(1000000 / 40000, 2) / 60 << " minutes\n";
}

}  // namespace OvMemTest
