#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "tests/faults/FaultCases.h"
#include "tests/faults/MatrixConnection.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScriptedPlatformTest.h"

// The cases of the fault matrix in which the service answers the handshake with
// a positive status that means nothing: the client then waits for ever, without
// another call. Each operation does so once at each of its handshakes, in a
// process of its own.

namespace OvMemTest {

namespace {

using namespace std::chrono_literals;

struct EndlessCase {
    const FaultyOperation* operation;
    TransportFault fault;
    int status;         // of the handshake
    std::string calls;  // one a line
};

std::string linesOf(const Calls& calls) {
    std::string lines;
    for (const std::string& call : calls) {
        lines += call + "\n";
    }
    return lines;
}

std::vector<EndlessCase> endlessCases(const FaultyOperation& operation) {
    std::vector<EndlessCase> cases;
    for (std::size_t position = 0; position < positionsOf(operation);
         ++position) {
        for (const std::int32_t status : faultyStatuses()) {
            const TransportFault fault{position, status};
            const Expectation expected =
                expectationOf(operation, fault, lastErrors().front());
            if (expected.endlessStatus) {
                cases.push_back({&operation, fault, *expected.endlessStatus,
                                 linesOf(expected.transport.takenCalls())});
            }
        }
    }
    return cases;
}

// One case for each position, each with another status.
std::vector<EndlessCase> representatives() {
    std::vector<EndlessCase> chosen;
    for (const FaultyOperation& operation : faultyOperations()) {
        const std::vector<EndlessCase> all = endlessCases(operation);
        for (std::size_t first = 0; first < all.size();) {
            std::size_t last = first;
            while (last < all.size() &&
                   all[last].fault.position == all[first].fault.position) {
                ++last;
            }
            chosen.push_back(all[first + chosen.size() % (last - first)]);
            first = last;
        }
    }
    return chosen;
}

int playEndlessly(const EndlessCase& endless) {
    ScriptedPlatform platform;
    platform.transport.traceTo(STDOUT_FILENO);
    expectationOf(*endless.operation, endless.fault, lastErrors().front())
        .transport.script(platform.transport);
    MatrixConnection connection(endless.operation->state);
    CallerValues caller = endless.operation->caller;
    endless.operation->library(connection.get(), caller);
    return 0;
}

}  // namespace

TEST(EndlessHandshake, WaitsForEverAtEachHandshakeOfEachOperation) {
    const std::vector<EndlessCase> cases = representatives();
    EXPECT_GT(cases.size(), faultyOperations().size());
    for (std::size_t first = 0; first < cases.size(); first += 8) {
        const std::size_t last = std::min(first + 8, cases.size());
        std::vector<std::unique_ptr<ChildProcess>> children;
        for (std::size_t i = first; i < last; ++i) {
            children.push_back(std::make_unique<ChildProcess>(
                [&] { return playEndlessly(cases[i]); }));
        }
        for (std::size_t i = first; i < last; ++i) {
            SCOPED_TRACE(cases[i].operation->name + ", status " +
                         std::to_string(cases[i].fault.status) + " at call " +
                         std::to_string(cases[i].fault.position));
            ChildProcess& child = *children[i - first];
            EXPECT_TRUE(child.awaitOutput(cases[i].calls, 10s))
                << child.output();
            EXPECT_FALSE(child.awaitEnd(50ms)) << "it came to an end";
            EXPECT_EQ(child.output(), cases[i].calls);
            EXPECT_EQ(child.errors(), "");
        }
    }
}

// All the others differ from those only in the status.
TEST(EndlessHandshake, TakesOnlyPositiveStatusesWithoutAMeaning) {
    std::size_t count = 0;
    for (const FaultyOperation& operation : faultyOperations()) {
        for (const EndlessCase& endless : endlessCases(operation)) {
            EXPECT_GT(endless.status, 0) << operation.name;
            EXPECT_NE(endless.status, 19) << operation.name;
            EXPECT_NE(endless.status, 20) << operation.name;
            EXPECT_TRUE(endless.calls.ends_with("OvMem_Receive()\n"));
            ++count;
        }
    }
    RecordProperty("cases", std::to_string(count));
    EXPECT_GT(count, 200U);
}

}  // namespace OvMemTest
