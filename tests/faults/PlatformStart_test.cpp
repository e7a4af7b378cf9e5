#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "tests/faults/StartSweep.h"

// The first connection of a process starts the XML platform, which takes some
// thousand requests for memory. When one of them is refused, the XML library
// says so, does without, or panics: it then ends the process with exit status
// 255. After a start that failed no document can be parsed any more in this
// process; to try it is an error like any other.

namespace OvMemTest {

namespace {

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

class FirstConnection : public PlatformStart {
public:
    void start() override { connection.emplace(); }

    std::string use(const Thrown& thrown) override {
        return thrown.type + complaintsOfRegistration(thrown == nothingThrown);
    }

private:
    std::optional<OvMEMConnection> connection;
};

StartSweep firstConnection() {
    return StartSweep([] { return std::make_unique<FirstConnection>(); });
}

void expectForeseen(const StartSweep& sweep,
                    const StartSweep::Outcomes& outcomes) {
    const std::set<std::string> foreseen{"nothing", "bad_alloc",
                                         "OutOfMemoryException", "panic"};
    std::cout << "of " << sweep.positions() << " positions";
    for (const auto& [outcome, count] : outcomes) {
        EXPECT_TRUE(foreseen.contains(outcome)) << outcome;
        std::cout << ", " << count << " " << outcome;
    }
    std::cout << std::endl;
}

}  // namespace

TEST(PlatformStart, ASampleOfItsPositionsEndsAsForeseen) {
    const StartSweep sweep = firstConnection();
    EXPECT_GT(sweep.positions(), 1000U);
    expectForeseen(sweep, sweep.refuseSome(97, false));
    expectForeseen(sweep, sweep.refuseSome(89, true));
}

TEST(LongPlatformStart, EachOfItsPositionsEndsAsForeseen) {
    const StartSweep sweep = firstConnection();
    expectForeseen(sweep, sweep.refuseEach(false));
}

TEST(LongPlatformStart, EachOfItsPositionsAndAllThatFollowEndAsForeseen) {
    const StartSweep sweep = firstConnection();
    expectForeseen(sweep, sweep.refuseEach(true));
}

}  // namespace OvMemTest
