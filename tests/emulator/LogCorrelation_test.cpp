#include "OvMemCppBinding/platform/LogCorrelation.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "emulator/ovlogging/LogCorrelationControl.h"
#include "tests/emulator/Environment.h"

using Orvane::Common::Logging::LogCorrelation;
using Orvane::Common::Logging::LogCorrelationControl;

namespace {

class LogCorrelationTest : public testing::Test {
protected:
    LogCorrelationTest() {
        environment.unset("OVLOG_REQUEST_ID");
        environment.unset("OVLOG_SESSION_ID");
        environment.unset("OVLOG_USER_ACTION");
    }
    ~LogCorrelationTest() override { LogCorrelationControl::clear(); }

    static std::vector<std::string> values() {
        const LogCorrelation* correlation = LogCorrelation::get();
        return {correlation->getRequestID(), correlation->getSessionID(),
                correlation->getUserAction()};
    }

    using Values = std::vector<std::string>;
    OvMemTest::Environment environment;
};

}  // namespace

TEST_F(LogCorrelationTest, ThereIsOneObject) {
    EXPECT_NE(LogCorrelation::get(), nullptr);
    EXPECT_EQ(LogCorrelation::get(), LogCorrelation::get());
}

TEST_F(LogCorrelationTest, TheHeadersHaveTheirNames) {
    EXPECT_STREQ(LogCorrelation::HTTP_HEADER_REQUEST_ID, "Request-ID");
    EXPECT_STREQ(LogCorrelation::HTTP_HEADER_SESSION_ID, "Session-ID");
    EXPECT_STREQ(LogCorrelation::HTTP_HEADER_USER_ACTION, "User-Action");
}

TEST_F(LogCorrelationTest, WithoutAnyValueAllAreEmpty) {
    EXPECT_EQ(values(), (Values{"", "", ""}));
}

TEST_F(LogCorrelationTest, TheEnvironmentIsReadAtEachCall) {
    environment.set("OVLOG_REQUEST_ID", "r1");
    environment.set("OVLOG_SESSION_ID", "s1");
    environment.set("OVLOG_USER_ACTION", "open");
    EXPECT_EQ(values(), (Values{"r1", "s1", "open"}));
    environment.set("OVLOG_REQUEST_ID", "r2");
    environment.unset("OVLOG_USER_ACTION");
    EXPECT_EQ(values(), (Values{"r2", "s1", ""}));
}

TEST_F(LogCorrelationTest, AValueThatWasSetWinsUntilItIsCleared) {
    environment.set("OVLOG_REQUEST_ID", "r1");
    environment.set("OVLOG_SESSION_ID", "s1");
    environment.set("OVLOG_USER_ACTION", "open");
    LogCorrelationControl::setRequestID("set");
    EXPECT_EQ(values(), (Values{"set", "s1", "open"}));
    LogCorrelationControl::setSessionID("");
    EXPECT_EQ(values(), (Values{"set", "", "open"}));
    LogCorrelationControl::setUserAction("save");
    EXPECT_EQ(values(), (Values{"set", "", "save"}));
    LogCorrelationControl::clear();
    EXPECT_EQ(values(), (Values{"r1", "s1", "open"}));
}

// So long that a value read while it is written would be seen to be half of
// each; the thread sanitizer watches, too.
TEST_F(LogCorrelationTest, ThreadsSeeWholeValues) {
    const std::string first(1 << 20, 'a');
    const std::string second(1 << 20, 'b');
    LogCorrelationControl::setRequestID(first);
    std::atomic<bool> stop = false;
    std::thread setter([&] {
        while (!stop) {
            LogCorrelationControl::setRequestID(second);
            LogCorrelationControl::setRequestID(first);
        }
    });
    for (int i = 0; i < 200; ++i) {
        const std::string value = LogCorrelation::get()->getRequestID();
        EXPECT_TRUE(value == first || value == second);
    }
    stop = true;
    setter.join();
}
