#ifndef TESTS_WIRE_WIREPLAYER_H
#define TESTS_WIRE_WIREPLAYER_H

#include <string>
#include <vector>

#include "tests/wire/WireCase.h"

namespace OvMemTest {

// Plays a case with a connection of its own over the scripted transport.
// Returns every difference from what the case says, as texts for people.
std::vector<std::string> playWireCase(const WireCase& wireCase);

}  // namespace OvMemTest

#endif
