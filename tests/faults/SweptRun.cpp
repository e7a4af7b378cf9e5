#include "tests/faults/SweptRun.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "tests/faults/MatrixConnection.h"
#include "tests/support/ScriptedPlatformTest.h"

namespace OvMemTest {

namespace {

// How a call may end for want of memory: as the C++ library says it, as the XML
// library says it, or as a converter that could not be opened.
bool saysOutOfMemory(const Thrown& thrown, const std::string& operation) {
    const std::string conversion =
        "Exception occurred while converting to UTF-8 bytes.";
    if (thrown == Thrown{"bad_alloc", 0, "std::bad_alloc"} ||
        thrown == Thrown{"OutOfMemoryException", 0, ""}) {
        return true;
    }
    if (operation.starts_with("getStatus")) {
        return thrown == Thrown{"OvMEMConnectionException", -1,
                                "OvMEM Connection failed"};
    }
    if (operation.starts_with("unregisterClient")) {
        return thrown == Thrown{"Exception", 0, conversion};
    }
    return thrown == Thrown{"OvMEMRuntimeException", 0, conversion};
}

// The states that a registration goes through: it stores the identity before
// anything is sent, one value after the other, and then starts the transport.
std::vector<ConnectionState> stepsOfRegistration(
    const SweptOperation& operation) {
    std::vector<ConnectionState> steps{operation.state};
    const auto step = [&steps](auto member, const auto& value) {
        ConnectionState next = steps.back();
        next.*member = value;
        steps.push_back(next);
    };
    step(&ConnectionState::serverId, operation.caller.serverId);
    step(&ConnectionState::clientId, operation.caller.clientId);
    step(&ConnectionState::locale, operation.caller.locale);
    step(&ConnectionState::ovMemStarted, true);
    return steps;
}

bool isOneOf(const std::vector<ConnectionState>& states,
             const ConnectionState& state) {
    return std::find(states.begin(), states.end(), state) != states.end();
}

}  // namespace

SweptRun::SweptRun(const SweptOperation& operation, FailingHeap::Plan plan)
    : failedAt(plan.failAt) {
    ScriptedPlatform platform;
    MatrixConnection connection(operation.state);
    {
        CallerValues used = operation.caller;
        operation.script(platform.transport);
        thrown = thrownBy([&] {
            const FailingHeap::Scope scope(plan);
            operation.run(connection.get(), used);
        });
        caller = used;
    }
    refused = FailingHeap::refused();
    state = connection.state();
    platform.transport.clear();
    platform.transport.takeCalls();

    // A new state, not to be asked for the memory of the old one.
    connection.bring(operation.state);
    nextCaller = operation.caller;
    operation.script(platform.transport);
    nextThrown = thrownBy([&] { operation.run(connection.get(), nextCaller); });
    nextState = connection.state();
    platform.transport.takeCalls();
}

// After an exception: as before, or as far as the operation says it may be.
bool SweptRun::leftInOrder(const SweptOperation& operation) const {
    const bool identityInOrder =
        state == operation.state || state == operation.stateAfter ||
        (operation.name.starts_with("registerClient") &&
         isOneOf(stepsOfRegistration(operation), state));
    CallerValues eventsOnly = operation.callerAfter;
    eventsOnly.sharedClients.clear();
    return identityInOrder &&
           (caller == operation.caller || caller == operation.callerAfter ||
            (operation.name.starts_with("getEvents") && caller == eventsOnly));
}

std::string SweptRun::complaints(const SweptOperation& operation) const {
    std::ostringstream text;
    const auto complain = [&]() -> std::ostream& {
        return text << "complaint at " << failedAt << ": ";
    };
    const bool asWithMemory = thrown == operation.thrown;
    if (!asWithMemory &&
        (refused == 0 || !saysOutOfMemory(thrown, operation.name))) {
        complain() << "ends as " << thrown << "\n";
    }
    if (thrown == nothingThrown &&
        (caller != operation.callerAfter || state != operation.stateAfter)) {
        complain() << "succeeds with another result\n";
    }
    if (thrown != nothingThrown && !leftInOrder(operation)) {
        complain() << "fails and leaves something in disorder\n";
    }
    if (nextThrown != operation.thrown || nextCaller != operation.callerAfter ||
        nextState != operation.stateAfter) {
        complain() << "the next call ends as " << nextThrown << "\n";
    }
    return text.str();
}

}  // namespace OvMemTest
