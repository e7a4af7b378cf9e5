#include "tests/support/ChildProcess.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

#include <gtest/gtest.h>
#include <unistd.h>

namespace OvMemTest {

using namespace std::chrono_literals;

TEST(ChildProcess, GivesBackStatusAndOutput) {
    ChildProcess child([] {
        std::cout << "out" << std::flush;
        std::cerr << "err";
        return 7;
    });
    EXPECT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 7);
    EXPECT_EQ(child.signal(), std::nullopt);
    EXPECT_EQ(child.output(), "out");
    EXPECT_EQ(child.errors(), "err");
}

TEST(ChildProcess, GivesBackTheSignalThatEndedIt) {
    ChildProcess child([]() -> int {
        std::signal(SIGABRT, SIG_DFL);
        std::abort();
    });
    EXPECT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), std::nullopt);
    EXPECT_EQ(child.signal(), SIGABRT);
}

TEST(ChildProcess, SaysWhatWasThrown) {
    ChildProcess child([]() -> int { throw std::runtime_error("disk"); });
    EXPECT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 254);
    EXPECT_EQ(child.errors(), "thrown: disk\n");
}

TEST(ChildProcess, IsKilledWhenItDoesNotEnd) {
    ChildProcess child([] {
        std::cout << "waiting" << std::flush;
        for (;;) {
            ::pause();
        }
        return 0;
    });
    EXPECT_TRUE(child.awaitOutput("wait", 10s));
    EXPECT_FALSE(child.awaitOutput("done", 10ms));
    EXPECT_FALSE(child.awaitEnd(10ms));
    child.kill();
    EXPECT_EQ(child.signal(), SIGKILL);
}

TEST(ChildProcess, ItsOutputMayBeLong) {
    ChildProcess child([] {
        std::cout << std::string(1000000, 'x');
        return 0;
    });
    EXPECT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.output(), std::string(1000000, 'x'));
}

TEST(ChildProcess, ChangesNothingHere) {
    static int value = 1;
    ChildProcess child([] {
        value = 2;
        return value;
    });
    EXPECT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 2);
    EXPECT_EQ(value, 1);
}

}  // namespace OvMemTest
