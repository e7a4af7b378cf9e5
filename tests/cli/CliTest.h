#ifndef TESTS_CLI_CLITEST_H
#define TESTS_CLI_CLITEST_H

#include <string>

#include <gtest/gtest.h>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace OvMemTest {

// Tests that run ovmem against the emulator, with a new store each.
class CliTest : public testing::Test {
protected:
    CliTest();

    // ovmem as the client `client` of the server "plant".
    Program as(const std::string& client) const;

    // Registers `client` at "plant".
    void registerClient(const std::string& client) const;

    // What `client` gets; a test failure unless it succeeds.
    std::string eventsOf(const std::string& client) const;

    TemporaryFolder folder;
    Program ovmem;
};

}  // namespace OvMemTest

#endif
