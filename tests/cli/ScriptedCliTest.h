#ifndef TESTS_CLI_SCRIPTEDCLITEST_H
#define TESTS_CLI_SCRIPTEDCLITEST_H

#include <string>

#include "tests/cli/CliTest.h"

namespace OvMemTest {

// The advice of most refusals.
inline const std::string SEE_HELP =
    "'ovmem --help' lists the commands and options.";

// Tests that run ovmem, the same binary, over a transport and a logging
// library that follow a script (see platform/ScriptFile.h).
class ScriptedCliTest : public CliTest {
protected:
    ScriptedCliTest();

    // What the transport answers.
    void script(const std::string& lines) const;

    // The calls that reached the two libraries, a line each.
    std::string trace() const;
};

// The script's answers to one exchange with this reply.
std::string exchange(const std::string& reply);

// The script's answers to an exchange that ends with this status.
std::string failingExchange(int status, const std::string& text);

}  // namespace OvMemTest

#endif
