#include <cstdlib>
#include <iostream>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/crash/DiskAfterCut.h"
#include "tests/crash/Observed.h"
#include "tests/crash/RecordedDisk.h"
#include "tests/crash/Work.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/Wire.h"
#include "tests/support/Repeat.h"
#include "tests/support/TemporaryFolder.h"

using namespace OvMemTest;

// All that a piece of work does to the disk is recorded, and disks are built
// as a power cut may leave them. In each of them every step that was answered
// is done, since the store syncs before it answers.

namespace {

using Kind = Step::Kind;

constexpr const char* storeBelow = "store/events.db";

void restart() {
    OvMem_Term();
    EXPECT_EQ(OvMem_Init(&std::malloc, &std::free), 0) << lastError();
}

// Closes the files and leaves the log as it is, as the end of a killed process
// does.
void closeAtOnce() {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
}

void carryOut(const Step& step) {
    static const std::map<Kind, std::string> operations{
        {Kind::join, "registerClient"},
        {Kind::leave, "unregisterClient"},
        {Kind::put, "putEvents"},
        {Kind::get, "getEvents"}};
    if (step.kind == Kind::close) {
        step.text.empty() ? restart() : closeAtOnce();
        return;
    }
    const Outcome outcome =
        request(operations.at(step.kind), "plant", step.client, step.text);
    EXPECT_EQ(outcome.status, -1) << outcome;
}

// The store is made, used, closed and used again.
Work smallWorkTwice() {
    Work work = smallWork();
    work.push_back({Kind::put, "pump", "8;"});
    work.push_back({Kind::close, "pump", "at once"});
    work.push_back({Kind::put, "pump", "9;"});
    work.push_back({Kind::get, "valve", ""});
    work.push_back({Kind::leave, "watcher", ""});
    work.push_back({Kind::put, "valve", "10;"});
    work.push_back({Kind::close, "pump", ""});
    return work;
}

// The log grows until it is written back while it is in use, begins again, is
// found large at the next opening, and is cut.
Work workOfALargeLog() {
    Work work{{Kind::join, "pump", ""},
              {Kind::join, "valve", ""},
              {Kind::put, "pump", "first;"}};
    for (int round = 0; round < 3; ++round) {
        for (int put = 0; put < 8; ++put) {
            work.push_back({Kind::put, "pump", std::string(300000, 'x') + ";"});
            work.push_back({Kind::put, "pump", "small;"});
        }
        work.push_back({Kind::get, "valve", ""});
    }
    work.push_back({Kind::put, "pump", std::string(5000000, 'y') + ";"});
    work.push_back({Kind::close, "pump", "at once"});
    work.push_back({Kind::put, "pump", "after;"});
    work.push_back({Kind::get, "valve", ""});
    work.push_back({Kind::put, "pump", "last;"});
    work.push_back({Kind::close, "pump", ""});
    return work;
}

struct Proof {
    Work (*work)();
    std::uint64_t disks;
};

class PowerCut : public testing::TestWithParam<Proof> {
protected:
    PowerCut() : work(GetParam().work()), states(statesOf(work)) {}

    // Does the work, and remembers what it does to the disk.
    void record(RecordedDisk& disk, const TemporaryFolder& folder) const {
        Environment environment;
        environment.set("OVMEM_STORE", "sqlite:" + folder.file(storeBelow));
        ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0) << lastError();
        for (const Step& step : work) {
            carryOut(step);
            disk.answer();
        }
        OvMem_Term();
    }

    const Work work;
    const std::vector<Queues> states;
};

}  // namespace

TEST_P(PowerCut, LosesAndDoublesNothingThatWasAnswered) {
    const TemporaryFolder original;
    RecordedDisk disk((original / ".").parent_path());
    record(disk, original);
    ASSERT_FALSE(HasFailure());
    const std::size_t moments = disk.changes().size() + 1;
    std::uint64_t built = 0;
    for (Rounds round(1, GetParam().disks); !HasFailure() && round.next();) {
        // Every moment in turn, if there are that many rounds, else some.
        const std::uint64_t seed = round.number();
        const std::size_t moment = seed * 7919 % moments;
        const std::size_t answered = disk.answeredBefore(moment);
        SCOPED_TRACE(round.how() + ", cut after change " +
                     std::to_string(moment));
        const TemporaryFolder left;
        DiskAfterCut(disk.changes(), moment, seed).writeTo(left / ".");
        expectWholeStore("sqlite:" + left.file(storeBelow), states, answered);
        ++built;
    }
    std::cout << built << " disks of " << moments << " moments\n";
}

INSTANTIATE_TEST_SUITE_P(Quick, PowerCut,
                         testing::Values(Proof{&smallWorkTwice, 300},
                                         Proof{&workOfALargeLog, 40}));
INSTANTIATE_TEST_SUITE_P(Long, PowerCut,
                         testing::Values(Proof{&smallWorkTwice, 5000},
                                         Proof{&workOfALargeLog, 600}));
