#include <chrono>
#include <iostream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "tests/faults/FailingHeap.h"
#include "tests/faults/SweptOperations.h"
#include "tests/faults/SweptRun.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Thrown.h"

// The first connection of a process starts the XML platform, which takes some
// thousand requests for memory. When one of them is refused, the XML library
// says so, does without, or panics: it then ends the process with exit status
// 255. After a start that failed no document can be parsed any more in this
// process; to try it is an error like any other.

namespace OvMemTest {

namespace {

using namespace std::chrono_literals;
using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

constexpr int panicked = 255;

struct Start {
    std::uint64_t failAt;
    bool andAllAfter;
};

const SweptOperation& firstOperation() {
    static const SweptOperation operation = [] {
        for (SweptOperation& candidate : sweptOperations()) {
            if (candidate.name == "registerClientSmall") {
                return candidate;
            }
        }
        throw std::logic_error("registerClientSmall is not swept");
    }();
    return operation;
}

// In the child: starts the platform, and then uses it.
int start(const Start& wanted) {
    std::optional<OvMEMConnection> connection;
    const Thrown thrown = thrownBy([&] {
        const FailingHeap::Scope scope({wanted.failAt, wanted.andAllAfter});
        connection.emplace();
    });
    std::cout << (FailingHeap::refused() == 0 ? "unrefused" : thrown.type);
    SweptOperation next = firstOperation();
    if (thrown != nothingThrown) {
        next.thrown = {"DomException", 0,
                       "XML parser platform is not initialised"};
        next.callerAfter = next.caller;
    }
    std::cout << SweptRun(next, {}).complaints(next) << std::endl;
    return 0;
}

std::string outcomeOf(const Start& wanted) {
    ChildProcess child([&wanted] { return start(wanted); });
    if (!child.awaitEnd(20s)) {
        return "hung";
    }
    if (child.exitStatus() == panicked) {
        return "panic";
    }
    return child.exitStatus() == 0
               ? child.output().substr(0, child.output().size() - 1)
               : "died after " + child.output() + child.errors();
}

void sweepStart(std::uint64_t first, std::uint64_t stride, bool andAllAfter) {
    std::map<std::string, int> outcomes;
    std::uint64_t at = first;
    for (;; at += stride) {
        const std::string outcome = outcomeOf({at, andAllAfter});
        if (outcome == "unrefused") {
            break;
        }
        ++outcomes[outcome];
        const bool foreseen = outcome == "nothing" || outcome == "bad_alloc" ||
                              outcome == "OutOfMemoryException" ||
                              outcome == "panic";
        EXPECT_TRUE(foreseen) << "at " << at << ": " << outcome;
    }
    EXPECT_GT(at, 1000U);
    std::cout << "fewer than " << at << " positions, one in " << stride
              << " tried:";
    for (const auto& [outcome, count] : outcomes) {
        std::cout << " " << count << " " << outcome;
    }
    std::cout << std::endl;
}

}  // namespace

TEST(PlatformStart, ASampleOfItsPositionsEndsAsForeseen) {
    sweepStart(1, 97, false);
    sweepStart(50, 97, true);
}

TEST(LongPlatformStart, EachOfItsPositionsEndsAsForeseen) {
    sweepStart(1, 1, false);
}

TEST(LongPlatformStart, EachOfItsPositionsAndAllThatFollowEndAsForeseen) {
    sweepStart(1, 1, true);
}

}  // namespace OvMemTest
