#include <chrono>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScriptedPlatformTest.h"

namespace {

// The sleeps that are told, and not slept, before the process ends.
int toTell = 0;

}  // namespace

// In the place of the C library's.
extern "C" int nanosleep(const timespec* time, timespec* left) {
    if (toTell == 0) {
        return static_cast<int>(::syscall(SYS_nanosleep, time, left));
    }
    std::cout << time->tv_sec * 1000 + time->tv_nsec / 1000000 << " ms\n";
    if (--toTell == 0) {
        std::exit(0);
    }
    return 0;
}

namespace Orvane::Net::OvModelEventManager::Client {

// Each sleep is twice as long as the one before it, up to a second.
TEST(OvMEMRequestWaiting, AnEndlessHandshakeSleepsLongerAndLonger) {
    using namespace std::chrono_literals;
    OvMemTest::ChildProcess child([] {
        OvMemTest::ScriptedPlatform platform;
        platform.transport.receive(18);
        std::istringstream stream("body");
        OvMEMRequest request;
        request.setRequestStream(&stream);
        toTell = 13;
        request.sendAndReceive();
        return 1;
    });
    EXPECT_TRUE(child.awaitEnd(10s)) << "it does not sleep";
    child.kill();
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    EXPECT_EQ(child.output(),
              "1 ms\n2 ms\n4 ms\n8 ms\n16 ms\n32 ms\n64 ms\n128 ms\n256 ms\n"
              "512 ms\n1000 ms\n1000 ms\n1000 ms\n");
}

// A handshake that goes on waits for nobody: it calls the transport, which
// waits itself.
TEST(OvMEMRequestWaiting, AHandshakeThatGoesOnDoesNotSleep) {
    using namespace std::chrono_literals;
    OvMemTest::ChildProcess child([] {
        OvMemTest::ScriptedPlatform platform;
        platform.transport.receive(19).receive(19).receive(20).reply("done");
        std::istringstream stream("body");
        OvMEMRequest request;
        request.setRequestStream(&stream);
        toTell = 1;
        std::cout << request.sendAndReceive();
        toTell = 0;
        platform.transport.takeCalls();
        return 2;
    });
    EXPECT_TRUE(child.awaitEnd(10s));
    child.kill();
    EXPECT_EQ(child.exitStatus(), 2) << child.errors();
    EXPECT_EQ(child.output(), "done");
}

}  // namespace Orvane::Net::OvModelEventManager::Client
