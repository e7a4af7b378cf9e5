#include <chrono>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScriptedPlatformTest.h"

namespace {

bool toTell = false;

}  // namespace

// In the place of the C library's.
extern "C" int sched_yield() noexcept {
    if (toTell && ::write(STDOUT_FILENO, "yields\n", 7) == 7) {
        toTell = false;
    }
    return static_cast<int>(::syscall(SYS_sched_yield));
}

namespace Orvane::Net::OvModelEventManager::Client {

TEST(OvMEMRequestYield, AnEndlessHandshakeLeavesTheProcessorToOthers) {
    using namespace std::chrono_literals;
    OvMemTest::ChildProcess child([] {
        OvMemTest::ScriptedPlatform platform;
        platform.transport.receive(18);
        std::istringstream stream("body");
        OvMEMRequest request;
        request.setRequestStream(&stream);
        toTell = true;
        request.sendAndReceive();
        return 0;
    });
    EXPECT_TRUE(child.awaitOutput("yields\n", 10s));
}

}  // namespace Orvane::Net::OvModelEventManager::Client
