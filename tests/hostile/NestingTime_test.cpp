#include <iomanip>
#include <iostream>

#include <gtest/gtest.h>

#include "tests/hostile/HostileReply.h"
#include "tests/hostile/HostileRun.h"

namespace OvMemTest {

// The XML library walks down from the root for every element, so that twice
// the depth takes four times as long, and a million days rather than seconds.
TEST(NestingTime, GrowsFasterThanTheDepthWithoutTheGuard) {
    for (const std::size_t depth : {5000U, 10000U, 20000U, 40000U}) {
        const HostileReply reply{"Nested",
                                 {{"<r><sharedClients>"},
                                  {"<a>", depth},
                                  {"</a>", depth},
                                  {"</sharedClients></r>"}},
                                 depthLimit(),
                                 accepted};
        const HostileRun run(reply, false);
        ASSERT_TRUE(run.ended()) << run.whyNot();
        EXPECT_EQ(run.fate(), accepted);
        std::cout << depth << " deep: " << std::fixed << std::setprecision(3)
                  << run.seconds() << " s\n";
    }
}

}  // namespace OvMemTest
