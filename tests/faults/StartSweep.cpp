#include "tests/faults/StartSweep.h"

#include <chrono>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "tests/faults/FailingHeap.h"
#include "tests/faults/SweptOperations.h"
#include "tests/faults/SweptRun.h"
#include "tests/support/ChildProcess.h"

namespace OvMemTest {

namespace {

using namespace std::chrono_literals;

constexpr int panicked = 255;

std::string outputOf(const std::function<std::string()>& code) {
    ChildProcess child([&code] {
        std::cout << code();
        return 0;
    });
    if (!child.awaitEnd(20s)) {
        return "hung";
    }
    if (child.exitStatus() == panicked) {
        return "panic";
    }
    return child.exitStatus() == 0
               ? child.output()
               : "died after " + child.output() + child.errors();
}

std::string outcomeOf(PlatformStart& start, FailingHeap::Plan plan) {
    const Thrown thrown = thrownBy([&] {
        const FailingHeap::Scope scope(plan);
        start.start();
    });
    return FailingHeap::refused() == 0 ? "unrefused" : start.use(thrown);
}

SweptOperation registration() {
    for (SweptOperation& candidate : sweptOperations()) {
        if (candidate.name == "registerClientSmall") {
            return candidate;
        }
    }
    throw std::logic_error("registerClientSmall is not swept");
}

}  // namespace

StartSweep::StartSweep(std::function<std::unique_ptr<PlatformStart>()> newStart)
    : make(std::move(newStart)), count(std::stoull(outputOf([this] {
          const auto start = make();
          outcomeOf(*start, {});
          return std::to_string(FailingHeap::requests());
      }))) {}

std::uint64_t StartSweep::positions() const {
    return count;
}

StartSweep::Outcomes StartSweep::refuseEach(bool andAllAfter) const {
    return refuseSome(1, andAllAfter);
}

StartSweep::Outcomes StartSweep::refuseSome(std::uint64_t stride,
                                            bool andAllAfter) const {
    constexpr std::uint64_t atEitherEnd = 20;
    Outcomes outcomes;
    for (std::uint64_t at = 1; at <= count; ++at) {
        if (at <= atEitherEnd || at + atEitherEnd > count || at % stride == 0) {
            ++outcomes[outputOf([&] {
                const auto start = make();
                return outcomeOf(*start, {at, andAllAfter});
            })];
        }
    }
    return outcomes;
}

std::string complaintsOfRegistration(bool platformRuns) {
    SweptOperation operation = registration();
    if (!platformRuns) {
        operation.thrown = {"DomException", 0,
                            "XML parser platform is not initialised"};
        operation.callerAfter = operation.caller;
    }
    return SweptRun(operation, {}).complaints(operation);
}

}  // namespace OvMemTest
