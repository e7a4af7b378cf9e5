#ifndef TESTS_SUPPORT_SCRIPTEDLOGGING_H
#define TESTS_SUPPORT_SCRIPTEDLOGGING_H

#include <functional>
#include <string>

#include "tests/support/ScriptedTransport.h"

namespace OvMemTest {

// A logging library with values that the test chooses. Its three header names
// sort before, among and behind those of the client: Caller-Action,
// Request-ID and Session-ID.
//
// Its calls enter the record of the transport, which it borrows: for instance
// LogCorrelation::getRequestID().
//
// Lifetime: as the transport's. A call on a thread without one ends the
// process.
class ScriptedLogging {
public:
    explicit ScriptedLogging(ScriptedTransport& transport);
    ~ScriptedLogging();
    ScriptedLogging(const ScriptedLogging&) = delete;
    ScriptedLogging& operator=(const ScriptedLogging&) = delete;

    std::string requestId = "r1";
    std::string sessionId = "s1";
    std::string userAction = "a1";

    // Runs when the values are fetched; what it throws passes to the caller.
    std::function<void()> onGet;

    // Called by LogCorrelation alone.
    void get();
    std::string fetch(const std::string ScriptedLogging::*value,
                      const char* getter);
    static ScriptedLogging& current();

private:
    ScriptedTransport& transport;
    ScriptedLogging* previous;
};

}  // namespace OvMemTest

#endif
