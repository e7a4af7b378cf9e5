#ifndef TESTS_CLI_PLATFORM_SCRIPTFILE_H
#define TESTS_CLI_PLATFORM_SCRIPTFILE_H

#include <istream>

#include "tests/support/ScriptedTransport.h"

namespace OvMemTest {

// Adds the answers of a script to a transport. A line each:
//
//     init 1002
//     receive 19
//     reply "<r/>"
//     last-error 0 "Out of reach."
//
// THROWS: std::invalid_argument for any other line.
void readScript(std::istream& lines, ScriptedTransport& transport);

}  // namespace OvMemTest

#endif
