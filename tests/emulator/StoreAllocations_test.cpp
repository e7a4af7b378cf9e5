#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>
#include <tuple>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/NextOperations.h"
#include "tests/emulator/StoredEvents.h"
#include "tests/emulator/Wire.h"
#include "tests/faults/FailingHeap.h"
#include "tests/support/Repeat.h"
#include "tests/support/RunInChild.h"
#include "tests/support/TemporaryFolder.h"

using namespace OvMemTest;
using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

// Every request for memory of every operation is refused once, and once more
// with all that follow. The operation may fail, but nothing ends the process,
// the next operations work, and no event is lost or torn.

namespace {

// Whether all that follow are refused, too, and how many operations come next.
using Refusals = std::tuple<bool, int>;

class StoreAllocations : public testing::TestWithParam<Refusals> {
protected:
    StoreAllocations() {
        environment.set("OVMEM_STORE", "sqlite:" + folder.file("events.db") +
                                           "?synchronous=NORMAL");
        EXPECT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
        expectDone(request("registerClient", "plant", "pump"));
        expectDone(request("registerClient", "plant", "valve"));
    }
    ~StoreAllocations() override { OvMem_Term(); }

    static void TearDownTestSuite() {
        std::cout << positions << " refused requests\n";
    }

    static void expectDone(const Outcome& outcome) {
        EXPECT_EQ(outcome.status, -1) << outcome;
    }

    // Runs `operation` with one more request refused each time, until none is.
    // After each run `check`, the next operations, and `end`.
    void sweep(
        const std::function<void()>& operation,
        const std::function<void()>& check,
        const std::function<void()>& end = [] {}) {
        for (Rounds round(1); round.next();) {
            SCOPED_TRACE(round.how());
            std::uint64_t refused = 0;
            {
                const FailingHeap::Scope scope(
                    {round.number(), std::get<bool>(GetParam())});
                operation();
                refused = FailingHeap::refused();
            }
            check();
            expectNextOperationsWork(std::get<int>(GetParam()));
            end();
            if (refused == 0 || HasFailure()) {
                EXPECT_NE(round.number(), 1U);
                return;
            }
            ++positions;
        }
    }

    // The exchange without anything that needs memory of the test itself.
    static std::int32_t exchange(const std::string& block,
                                 const std::string& body) {
        std::array<char, 16384> buffer;
        std::int32_t status = OvMem_SendNoAck(block.c_str());
        if (status < 0) {
            return status;
        }
        OvMem_SendEOF();
        status = OvMem_Receive(buffer.data());
        if (status != 19) {
            return status;
        }
        status = OvMem_SendNoAck(body.c_str());
        if (status < 0 || OvMem_SendEOF() < 0) {
            return -3010;
        }
        status = OvMem_Receive(buffer.data());
        while (status >= 0) {
            status = OvMem_Receive(buffer.data());
        }
        if (status == -1) {
            OvMem_Complete();
        }
        return status;
    }

    void sweepExchange(const std::string& operation, const std::string& client,
                       const std::string& body,
                       const std::function<void(bool)>& check) {
        const std::string block = headerBlock(operation, "plant", client);
        std::int32_t status = 0;
        sweep([&] { status = exchange(block, body); },
              [&] {
                  EXPECT_TRUE(status == -1 || status == -3010) << status;
                  check(status == -1);
              });
    }

    // What valve gets is all of `text` or, where that may be, none of it, and
    // then what is put now.
    static void expectArrival(const std::string& text, bool surely) {
        expectDone(request("putEvents", "plant", "pump", "[tick]"));
        const Outcome got = request("getEvents", "plant", "valve");
        expectDone(got);
        EXPECT_TRUE(got.reply == text + "[tick]" ||
                    (!surely && got.reply == "[tick]"))
            << got.reply.size() << " bytes";
    }

    static inline int positions = 0;

    TemporaryFolder folder;
    Environment environment;
};

}  // namespace

TEST_P(StoreAllocations, ARegistrationIsDoneOrNot) {
    sweepExchange("registerClient", "motor", "probe", [](bool done) {
        const Outcome left = request("unregisterClient", "plant", "motor");
        EXPECT_TRUE(left.status == -1 || (!done && left.status == -3017))
            << left;
    });
}

TEST_P(StoreAllocations, AnEndOfARegistrationIsDoneOrNot) {
    expectDone(request("registerClient", "plant", "motor"));
    sweepExchange("unregisterClient", "motor", "probe", [](bool done) {
        if (done) {
            EXPECT_EQ(request("getEvents", "plant", "motor").status, -3017);
        }
        expectDone(request("registerClient", "plant", "motor"));
    });
}

TEST_P(StoreAllocations, APutArrivesWholeOrNotAtAll) {
    sweepExchange("putEvents", "pump", "events",
                  [](bool done) { expectArrival("events", done); });
}

TEST_P(StoreAllocations, AGetLosesNothing) {
    expectDone(request("putEvents", "plant", "pump", "events"));
    sweepExchange("getEvents", "valve", "probe", [](bool done) {
        expectArrival("events", !done);
        expectDone(request("putEvents", "plant", "pump", "events"));
    });
}

// More events than its own transaction removes; the next call removes others.
TEST_P(StoreAllocations, ACompletionIsDoneWhateverItsTidyingLacks) {
    const std::string file = folder.file("events.db");
    const auto getMany = [&] {
        storeEvents(file, 300);
        EXPECT_EQ(streamedExchange(headerBlock("getEvents", "plant", "valve"),
                                   {"probe"})
                      .reply.size(),
                  1200U);
    };
    std::int32_t status = 0;
    getMany();
    std::int32_t next = 0;
    const std::string block = headerBlock("getSharedClients", "plant", "pump");
    sweep(
        [&] {
            status = OvMem_Complete();
            next = exchange(block, "probe");
        },
        [&] {
            SQLite::Database store(file);
            const int left =
                store
                    .execAndGet(
                        "SELECT next - 1 - min(cursor) FROM server JOIN "
                        "client ON server = id")
                    .getInt();
            // If it failed, the next exchange makes up for it.
            EXPECT_EQ(left, status == 0 || next == -1 ? 0 : 300);
            EXPECT_TRUE(next == -1 || next == -3010) << next;
            EXPECT_TRUE(status == 0 || status == -3010) << status;
            expectArrival("", true);
        },
        getMany);
}

TEST_P(StoreAllocations, AListOfClientsAndAStatusHarmNothing) {
    sweepExchange("getSharedClients", "pump", "probe",
                  [](bool) { expectArrival("", true); });
    sweepExchange("getStatus", "", "probe",
                  [](bool) { expectArrival("", true); });
}

TEST_P(StoreAllocations, AStartWorksOrIsRefused) {
    OvMem_Term();
    std::int32_t status = 0;
    sweep([&] { status = OvMem_Init(&std::malloc, &std::free); },
          [&] {
              EXPECT_TRUE(status == 0 || status == 1003 || status == 1001)
                  << status;
              if (status == 0) {
                  OvMem_Term();
              }
              ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
              expectArrival("", true);
          },
          [] { OvMem_Term(); });
    ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
}

// The library gives a request up in the middle when it has no memory.
TEST_P(StoreAllocations, ThePutOfAConnectionArrivesWholeOrNotAtAll) {
    // A process of its own, since a connection ends the XML platform.
    OvMemTest::runInChild([this] {
        OvMEMConnection connection;
        std::string server = "plant", client = "pump", locale;
        std::vector<std::string> others;
        connection.registerClient(server, client, locale, others);
        std::string events(9000, 'e'), correlation = "sweep";
        std::string tick = "[tick]";
        bool done = false;
        sweep(
            [&] {
                try {
                    connection.putEvents(events, others, correlation);
                    done = true;
                } catch (...) {
                    done = false;
                }
            },
            [&] {
                connection.putEvents(tick, others, correlation);
                const Outcome got = request("getEvents", "plant", "valve");
                EXPECT_TRUE(got.reply == events + tick ||
                            (!done && got.reply == tick))
                    << got.reply.size() << " bytes";
            });
    });
}

INSTANTIATE_TEST_SUITE_P(Quick, StoreAllocations,
                         testing::Combine(testing::Bool(), testing::Values(8)));
INSTANTIATE_TEST_SUITE_P(Long, StoreAllocations,
                         testing::Combine(testing::Bool(),
                                          testing::Values(50)));
