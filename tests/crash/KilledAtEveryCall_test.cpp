#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <tuple>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/crash/Observed.h"
#include "tests/crash/TracedRun.h"
#include "tests/crash/Work.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/Wire.h"
#include "tests/support/Repeat.h"
#include "tests/support/TemporaryFolder.h"

using namespace OvMemTest;

// A program of the library is killed before and after every system call on a
// file of the store. What was answered is done, what was not is done or not,
// and nothing in between.

namespace {

enum class Beside { nobody, anotherProcess };

// Whether this process has the store open meanwhile, and at which calls the
// program is killed: at each, or at one in so many.
class KilledAtEveryCall
    : public testing::TestWithParam<std::tuple<Beside, std::uint64_t>> {
protected:
    bool isBeside() const {
        return std::get<Beside>(GetParam()) == Beside::anotherProcess;
    }

    // Kills a program at one position; its calls.
    std::uint64_t killAt(std::uint64_t position) {
        const TemporaryFolder folder;
        const std::string url = "sqlite:" + folder.file("store/events.db");
        Environment environment;
        environment.set("OVMEM_STORE", url);
        Queues before;
        if (isBeside()) {
            before["beside"] = "";
            EXPECT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
            EXPECT_EQ(request("registerClient", "plant", "beside").status, -1);
        }
        TracedPlan plan{OVMEM_DO_WORK, url, folder.file("store"),
                        folder.file("output"), position};
        if (isBeside()) {
            // The fork has closed it.
            plan.atStart = [&] { observe(before); };
        }
        const TracedEnd end = runTraced(plan);
        const std::size_t answered = readFile(plan.output).size();
        const auto states = statesOf(smallWork(), before);
        if (end.calls >= (position + 1) / 2 && position != 0) {
            EXPECT_TRUE(WIFSIGNALED(end.status) &&
                        WTERMSIG(end.status) == SIGKILL)
                << end.status;
        } else {
            EXPECT_EQ(end.status, 0);
            EXPECT_EQ(answered + 1, states.size());
        }
        if (isBeside()) {
            expectWholeStore(states, answered);
            EXPECT_EQ(OvMem_Term(), 0);
        } else {
            expectWholeStore(url, states, answered);
        }
        return end.calls;
    }
};

}  // namespace

TEST_P(KilledAtEveryCall, AProgramLosesAndDoublesNothing) {
    const std::uint64_t step = std::get<std::uint64_t>(GetParam());
    const std::uint64_t positions = 2 * killAt(0);
    ASSERT_GT(positions, 200U);
    std::uint64_t kills = 0;
    for (Rounds round(1, positions); !HasFailure() && round.next();) {
        if (round.number() % step == 1 % step) {
            SCOPED_TRACE(round.how());
            killAt(round.number());
            ++kills;
        }
    }
    std::cout << kills << " kills at " << positions << " positions\n";
}

INSTANTIATE_TEST_SUITE_P(
    Quick, KilledAtEveryCall,
    testing::Combine(testing::Values(Beside::nobody, Beside::anotherProcess),
                     testing::Values(13U)));
INSTANTIATE_TEST_SUITE_P(
    Long, KilledAtEveryCall,
    testing::Combine(testing::Values(Beside::nobody, Beside::anotherProcess),
                     testing::Values(1U)));
