#ifndef TESTS_EMULATOR_STARTEDTRANSPORT_H
#define TESTS_EMULATOR_STARTEDTRANSPORT_H

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/Environment.h"

namespace OvMemTest {

// The fixture of tests that talk to the emulator through the eight functions:
// the transport is started over a store in memory and ended after the test.
class StartedTransport : public testing::Test {
protected:
    explicit StartedTransport(const std::string& url = "memory:") {
        environment.set("OVMEM_STORE", url);
        EXPECT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
    }
    ~StartedTransport() override { EXPECT_EQ(OvMem_Term(), 0); }

    Environment environment;
};

}  // namespace OvMemTest

#endif
