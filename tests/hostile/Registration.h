#ifndef TESTS_HOSTILE_REGISTRATION_H
#define TESTS_HOSTILE_REGISTRATION_H

#include <string>
#include <vector>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "tests/hostile/PieceStream.h"
#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

// A connection that registers, again and again, each time answered as is
// scripted before.
class Registration {
public:
    Registration();

    void script(const std::vector<Piece>& reply);
    Thrown run();

    // As the replies say; they add up.
    std::vector<std::string> shared;

private:
    ScriptedPlatform platform;
    Orvane::Net::OvModelEventManager::Client::OvMEMConnection connection;
};

}  // namespace OvMemTest

#endif
