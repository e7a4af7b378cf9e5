#include "tests/faults/AllocationSweep.h"

#include <array>
#include <chrono>
#include <csignal>
#include <iostream>
#include <sstream>

#include <execinfo.h>
#include <unistd.h>
#include <xercesc/util/PlatformUtils.hpp>

#include "tests/faults/HeapLoss.h"
#include "tests/faults/SweptRun.h"
#include "tests/support/ChildProcess.h"

namespace OvMemTest {

namespace {

using namespace std::chrono_literals;

void printStackAndDie(int signal) {
    std::array<void*, 64> frames;
    const int depth =
        ::backtrace(frames.data(), static_cast<int>(frames.size()));
    ::backtrace_symbols_fd(frames.data(), depth, STDERR_FILENO);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// A loss counts when it happens again: the XML library and ICU keep what they
// make once for the process.
void reportLosses(const SweptOperation& operation, FailingHeap::Plan plan) {
    FailingHeap::watch(FailingHeap::held());
    const SweptRun again(operation, plan);
    const std::vector<std::uint64_t> held = FailingHeap::held();
    std::map<std::string, std::uint64_t> losses;
    for (const std::uint64_t request : held) {
        const std::vector<std::string> stack = FailingHeap::stackOf(request);
        const std::string loser = whoLost(stack);
        if (loser.empty()) {
            std::cout << "complaint at " << plan.failAt << ": lost request "
                      << request << " of " << inOneLine(stack) << "\n";
        } else {
            ++losses[loser];
        }
    }
    FailingHeap::watch({});
    for (const auto& [loser, count] : losses) {
        std::cout << "lost " << count << " " << loser << "\n";
    }
    std::cout << (losses.empty() ? "" : "lossy\n");
}

// In the child. What it prints is read by `take`.
int sweep(const SweptOperation& operation, bool andAllAfter,
          std::uint64_t first) {
    for (const int signal : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL}) {
        std::signal(signal, printStackAndDie);
    }
    xercesc::XMLPlatformUtils::Initialize();
    FailingHeap::watch({});
    for (int warmUp = 0; warmUp < 2; ++warmUp) {
        const SweptRun whole(operation, {});
        std::cout << whole.complaints(operation);
    }
    for (std::uint64_t request : FailingHeap::held()) {
        std::cout << "complaint at 0: lost request " << request << "\n";
    }
    for (FailingHeap::Plan plan{first, andAllAfter};; ++plan.failAt) {
        std::cout << "at " << plan.failAt << std::endl;
        const SweptRun run(operation, plan);
        if (run.refused == 0) {
            std::cout << "positions " << plan.failAt - 1 << "\n";
            return 0;
        }
        std::cout << "outcome " << run.thrown.type << "\n"
                  << run.complaints(operation);
        if (!FailingHeap::held().empty()) {
            reportLosses(operation, plan);
        }
    }
}

// Adds the lines of a child to a result; answers with the request it was at.
std::uint64_t take(const std::string& lines, SweepResult& result) {
    std::istringstream stream(lines);
    std::uint64_t at = 0;
    for (std::string word; stream >> word;) {
        std::string rest;
        if (word == "at") {
            stream >> at;
        } else if (word == "positions") {
            stream >> result.positions;
        } else if (word == "lossy") {
            ++result.lossyRuns;
        } else if (word == "outcome") {
            stream >> rest;
            ++result.outcomes[rest];
        } else if (word == "lost") {
            std::uint64_t count = 0;
            stream >> count >> std::ws;
            std::getline(stream, rest);
            result.lostBlocks[rest] += count;
        } else {
            std::getline(stream, rest);
            result.complaints.push_back(word + rest);
        }
    }
    return at;
}

}  // namespace

SweepResult sweepAllocations(const SweptOperation& operation,
                             bool andAllAfter) {
    SweepResult result;
    for (std::uint64_t first = 1; result.positions == 0;) {
        ChildProcess child(
            [&] { return sweep(operation, andAllAfter, first); });
        const bool ended = child.awaitEnd(20min);
        child.kill();
        const std::uint64_t at = take(child.output(), result);
        if (child.exitStatus() == 0) {
            continue;
        }
        result.complaints.push_back("at " + std::to_string(at) +
                                    (ended ? ": died" : ": hung") + "\n" +
                                    child.errors());
        if (at < first || result.complaints.size() > 20) {
            break;
        }
        first = at + 1;
    }
    return result;
}

}  // namespace OvMemTest
