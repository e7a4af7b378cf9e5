#ifndef TESTS_SUPPORT_RUNINCHILD_H
#define TESTS_SUPPORT_RUNINCHILD_H

#include <functional>

#include <gtest/gtest.h>

#include "tests/support/ChildProcess.h"

namespace OvMemTest {

// Runs the rest of a test in a process of its own. The expectations inside
// count as those of the test, as does its coming to an end within a minute.
inline void runInChild(const std::function<void()>& rest) {
    ChildProcess child([&rest] {
        rest();
        return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_TRUE(child.awaitEnd(std::chrono::minutes(1))) << "still running";
    child.kill();
    EXPECT_EQ(child.exitStatus(), 0) << child.output() << child.errors();
}

}  // namespace OvMemTest

#endif
