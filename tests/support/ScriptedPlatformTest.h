#ifndef TESTS_SUPPORT_SCRIPTEDPLATFORMTEST_H
#define TESTS_SUPPORT_SCRIPTEDPLATFORMTEST_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ScriptedLogging.h"
#include "tests/support/ScriptedTransport.h"

namespace OvMemTest {

using Calls = ScriptedTransport::Calls;

// Both closed libraries, scripted; what goes wrong with them fails the test.
struct ScriptedPlatform {
    ScriptedTransport transport{
        [](const std::string& what) { ADD_FAILURE() << what; }};
    ScriptedLogging logging{transport};

    // The calls of the transport alone.
    Calls takeTransportCalls() {
        Calls calls = transport.takeCalls();
        std::erase_if(calls, [](const std::string& call) {
            return !call.starts_with("OvMem_");
        });
        return calls;
    }
};

// A test in which `transport` and `logging` stand behind the library.
class ScriptedPlatformTest : public ::testing::Test, public ScriptedPlatform {};

}  // namespace OvMemTest

#endif
