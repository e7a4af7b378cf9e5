#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/FailingCalls.h"
#include "tests/emulator/Wire.h"
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
                                           "?synchronous=NORMAL");
        start();
        expectDone(request("registerClient", "plant", "pump"));
        expectDone(request("registerClient", "plant", "valve"));
    }
    ~StoreSystemCalls() override { OvMem_Term(); }

    static void start() { ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0); }

    static void expectDone(const Outcome& outcome) {
        EXPECT_EQ(outcome.status, -1) << outcome;
    }

    // Each run begins with the store just opened, so that what is done at its
    // opening fails, too.
    void sweep(const std::function<Outcome()>& operation,
               const std::function<void(const Outcome&)>& check) {
        for (std::uint64_t position = 1;; ++position) {
            SCOPED_TRACE(position);
            OvMem_Term();
            Outcome outcome;
            std::uint64_t failed = 0;
            {
                const FailingCalls failing({position, std::get<int>(GetParam()),
                                            std::get<bool>(GetParam())});
                const std::int32_t started =
                    OvMem_Init(&std::malloc, &std::free);
                outcome = started == 0 ? operation()
                                       : Outcome{started, "", lastError()};
                failed = FailingCalls::failed();
            }
            expectKnown(outcome);
            if (outcome.status == 1001) {
                start();
            }
            check(outcome);
            if (failed == 0 || HasFailure()) {
                EXPECT_GT(position, 1U);
                return;
            }
        }
    }

    static void expectKnown(const Outcome& outcome) {
        EXPECT_TRUE(outcome.status == -1 || outcome.status == -3001 ||
                    outcome.status == -3010 || outcome.status == 1001 ||
                    outcome.status == 1003)
            << outcome;
        EXPECT_EQ(outcome.error.find("damaged"), std::string::npos) << outcome;
    }

    static void expectArrival(const std::string& text, bool surely) {
        expectDone(request("putEvents", "plant", "pump", "[tick]"));
        const Outcome got = request("getEvents", "plant", "valve");
        expectDone(got);
        EXPECT_TRUE(got.reply == text + "[tick]" ||
                    (!surely && got.reply == "[tick]"))
            << got;
    }

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
                    std::tuple{ENOLCK, false}));
