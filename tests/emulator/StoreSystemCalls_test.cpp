#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/FailingCalls.h"
#include "tests/emulator/NextOperations.h"
#include "tests/emulator/Wire.h"
#include "tests/support/Repeat.h"
#include "tests/support/TemporaryFolder.h"

using namespace OvMemTest;

// Every system call of every operation fails once, and once more with all that
// follow. The operation may fail, but the next ones work, and no event is lost
// or torn.

namespace {

class StoreSystemCalls : public testing::TestWithParam<std::tuple<int, bool>> {
protected:
    StoreSystemCalls() {
        environment.set("OVMEM_STORE", "sqlite:" + folder.file("events.db") +
                                           "?synchronous=FULL");
        start();
        expectDone(request("registerClient", "plant", "pump"));
        expectDone(request("registerClient", "plant", "valve"));
    }
    ~StoreSystemCalls() override { OvMem_Term(); }

    static void TearDownTestSuite() {
        std::cout << positions << " failing calls\n";
    }

    static void start() { ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0); }

    static void expectDone(const Outcome& outcome) {
        EXPECT_EQ(outcome.status, -1) << outcome;
    }

    // Each run begins with the store just opened, so that what is done at its
    // opening fails, too.
    void sweep(const std::function<Outcome()>& operation,
               const std::function<void(const Outcome&)>& check) {
        for (Rounds round(1); round.next();) {
            SCOPED_TRACE(round.how());
            OvMem_Term();
            Outcome outcome;
            std::uint64_t failed = 0;
            {
                const FailingCalls failing(
                    {round.number(), std::get<int>(GetParam()),
                     std::get<bool>(GetParam())},
                    (folder / ".").parent_path().string());
                const std::int32_t started =
                    OvMem_Init(&std::malloc, &std::free);
                outcome = started == 0 ? operation()
                                       : Outcome{started, "", lastError()};
                failed = failing.failed();
            }
            expectKnown(outcome);
            if (outcome.status == 1001) {
                start();
            }
            check(outcome);
            expectNextOperationsWork();
            if (failed == 0 || HasFailure()) {
                EXPECT_NE(round.number(), 1U);
                return;
            }
            ++positions;
        }
    }

    // Either it went well, or the text says what failed and what to do.
    static void expectKnown(const Outcome& outcome) {
        if (outcome.status == -1) {
            return;
        }
        EXPECT_TRUE(outcome.status == -3001 || outcome.status == 1001)
            << outcome;
        EXPECT_THAT(outcome.error, testing::AnyOfArray(endings())) << outcome;
    }

    // How the text may end.
    static std::vector<testing::Matcher<std::string>> endings() {
        const std::string freeSpace =
            "). Free space on its disk, then repeat the call.";
        const std::map<int, std::string> advice{
            {EIO, "). Repeat the call. If it fails again, check the disk."},
            {ENOSPC, freeSpace},
            {EDQUOT, freeSpace},
            {EMFILE,
             "). Close files or raise the limit of open files, then repeat the "
             "call."},
            {ENOLCK,
             "). Set OVMEM_STORE to a file on a local file system, or free "
             "locks of files, then repeat the call."}};
        const int error = std::get<int>(GetParam());
        if (error == FailingCalls::fallsShort) {
            return {};
        }
        return {testing::EndsWith(std::strerror(error) + advice.at(error)),
                testing::EndsWith("has no room left (database or disk is full" +
                                  freeSpace)};
    }

    static void expectArrival(const std::string& text, bool surely) {
        expectDone(request("putEvents", "plant", "pump", "[tick]"));
        const Outcome got = request("getEvents", "plant", "valve");
        expectDone(got);
        EXPECT_TRUE(got.reply == text + "[tick]" ||
                    (!surely && got.reply == "[tick]"))
            << got;
    }

    static inline int positions = 0;

    TemporaryFolder folder;
    Environment environment;
};

}  // namespace

TEST_P(StoreSystemCalls, APutArrivesWholeOrNotAtAll) {
    sweep(
        [] { return request("putEvents", "plant", "pump", "events;"); },
        [](const Outcome& put) { expectArrival("events;", put.status == -1); });
}

TEST_P(StoreSystemCalls, AGetLosesNothing) {
    expectDone(request("putEvents", "plant", "pump", "events;"));
    sweep(
        [] {
            return streamedExchange(headerBlock("getEvents", "plant", "valve"),
                                    {"probe"});
        },
        [](const Outcome&) {
            expectArrival("events;", true);
            expectDone(request("putEvents", "plant", "pump", "events;"));
        });
}

TEST_P(StoreSystemCalls, ACompletionIsDoneOrDoneLater) {
    expectDone(request("putEvents", "plant", "pump", "events;"));
    sweep([] { return request("getEvents", "plant", "valve"); },
          [](const Outcome& got) {
              // Even if its completion failed: the next exchange made up for
              // it.
              expectArrival(got.reply.empty() ? "events;" : "", true);
              expectDone(request("putEvents", "plant", "pump", "events;"));
          });
}

TEST_P(StoreSystemCalls, ARegistrationIsDoneOrNot) {
    sweep([] { return request("registerClient", "plant", "motor"); },
          [](const Outcome& joined) {
              const Outcome left =
                  request("unregisterClient", "plant", "motor");
              EXPECT_TRUE(left.status == -1 ||
                          (joined.status != -1 && left.status == -3017))
                  << left;
          });
}

// A lock that never comes is waited for, so that one fails only once.
INSTANTIATE_TEST_SUITE_P(
    Errors, StoreSystemCalls,
    testing::Values(std::tuple{EIO, false}, std::tuple{EIO, true},
                    std::tuple{ENOSPC, false}, std::tuple{ENOSPC, true},
                    std::tuple{EDQUOT, false}, std::tuple{EDQUOT, true},
                    std::tuple{EMFILE, false}, std::tuple{EMFILE, true},
                    std::tuple{ENOLCK, false},
                    std::tuple{FailingCalls::fallsShort, false},
                    std::tuple{FailingCalls::fallsShort, true}));
