#include "emulator/store/QueueLimits.h"

#include <memory>
#include <string>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include "emulator/manager/EventManager.h"
#include "emulator/manager/Refusal.h"
#include "emulator/manager/SharedClientsReplies.h"
#include "emulator/store/MemoryStore.h"
#include "emulator/store/SqliteStore.h"
#include "tests/emulator/SealedRows.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

// What the suite needs to know of each kind of store.

struct LimitsInMemory {
    explicit LimitsInMemory(const QueueLimits& limits)
        : store({.limits = limits, .clock = [] { return now; }}) {
        now = 1000000;
    }

    const std::string name = "in memory";
    MemoryStore store;

    void passTime(std::int64_t seconds) { now += seconds; }

private:
    static std::int64_t now;
};

std::int64_t LimitsInMemory::now;

struct LimitsInSqlite {
    explicit LimitsInSqlite(const QueueLimits& limits)
        : store({.path = folder.file("events.db"),
                 .synchronous = Synchronous::normal,
                 .limits = limits}) {}

    OvMemTest::TemporaryFolder folder;
    const std::string name = "'" + folder.file("events.db") + "'";
    SqliteStore store;

    // Not much of it passes in the test itself: seconds are rounded down.
    void passTime(std::int64_t seconds) {
        SQLite::Database file(folder.file("events.db"), SQLite::OPEN_READWRITE);
        file.exec("UPDATE event SET time = time - " + std::to_string(seconds));
        OvMemTest::sealRows(file);
    }
};

template <typename Kind>
class QueueLimitsOfStores : public testing::Test {
protected:
    void limit(const QueueLimits& limits) {
        kind = std::make_unique<Kind>(limits);
        for (const char* client : {"pump", "valve"}) {
            join(client);
        }
    }

    void join(const std::string& client) {
        kind->store.registerClient({"plant", client});
    }

    // "stored", or why not.
    std::string put(const std::string& client, const std::string& events) {
        SharedClientsReplies replies;
        EventManager manager(kind->store, replies);
        try {
            manager.answer({Operation::putEvents, {"plant", client}, ""},
                           events);
            return "stored";
        } catch (const Refusal& refusal) {
            EXPECT_EQ(refusal.status, -751);
            return refusal.what();
        }
    }

    std::string tooMany(const std::string& limits, const std::string& waiting,
                        const std::string& client) const {
        return "The event store " + kind->name + " keeps at most " + limits +
               ", and " + waiting +
               " would wait with this put for the client '" + client +
               "' of the server 'plant'. Nothing was stored. Let that client "
               "get its events, or unregister it, then repeat the put.";
    }

    std::string tooOld(const std::string& age) const {
        return "The event store " + kind->name +
               " takes no events while one has waited for a client for 60 "
               "seconds (limit-age=60), and one has waited for " +
               age +
               " seconds for the client 'valve' of the server 'plant'. "
               "Nothing was stored. Let that client get its events, or "
               "unregister it, then repeat the put.";
    }

    std::string take(const std::string& client) {
        const PendingEvents got =
            kind->store.getEvents({"plant", client}).value();
        kind->store.consume({"plant", client}, got.upto);
        return got.text;
    }

    std::unique_ptr<Kind> kind;
};

using LimitStores = testing::Types<LimitsInMemory, LimitsInSqlite>;
TYPED_TEST_SUITE(QueueLimitsOfStores, LimitStores);

}  // namespace

TYPED_TEST(QueueLimitsOfStores, APutBeyondTheNumberOfEventsIsNotStored) {
    this->limit({.events = 2, .bytes = {}, .seconds = {}});
    EXPECT_EQ(this->put("pump", "1"), "stored");
    EXPECT_EQ(this->put("pump", "2"), "stored");
    const std::string full = this->tooMany(
        "2 events for a client (limit-events=2)", "3 events", "valve");
    EXPECT_EQ(this->put("pump", "3"), full);
    EXPECT_EQ(this->put("pump", "3"), full);
    EXPECT_EQ(this->take("valve"), "12");
    EXPECT_EQ(this->put("pump", "4"), "stored");
    EXPECT_EQ(this->take("valve"), "4");
}

TYPED_TEST(QueueLimitsOfStores, APutBeyondTheNumberOfBytesIsNotStored) {
    this->limit({.events = {}, .bytes = 10, .seconds = {}});
    EXPECT_EQ(this->put("pump", "123456"), "stored");
    EXPECT_EQ(this->put("pump", "12345"),
              this->tooMany("10 bytes for a client (limit-bytes=10)",
                            "11 bytes", "valve"));
    EXPECT_EQ(this->put("pump", "1234"), "stored");
    EXPECT_EQ(this->take("valve"), "1234561234");
    EXPECT_EQ(this->put("pump", "1234567890"), "stored");
    EXPECT_EQ(this->put("pump", "x"),
              this->tooMany("10 bytes for a client (limit-bytes=10)",
                            "11 bytes", "valve"));
}

TYPED_TEST(QueueLimitsOfStores, APutThatAloneHasTooManyBytesIsNotStored) {
    this->limit({.events = {}, .bytes = 10, .seconds = {}});
    EXPECT_EQ(this->put("pump", "12345678901"),
              "The event store " + this->kind->name +
                  " keeps at most 10 bytes for a client (limit-bytes=10), and "
                  "this put alone has 11. Nothing was stored. Send less at "
                  "once, or raise the limit.");
    EXPECT_EQ(this->take("valve"), "");
}

TYPED_TEST(QueueLimitsOfStores, NoPutIsStoredWhileAnEventHasWaitedTooLong) {
    this->limit({.events = {}, .bytes = {}, .seconds = 60});
    EXPECT_EQ(this->put("pump", "1"), "stored");
    this->kind->passTime(40);
    EXPECT_EQ(this->put("pump", "2"), "stored");
    this->kind->passTime(40);
    const std::string refused = this->put("pump", "3");
    bool told = false;
    for (int age = 80; age < 100; ++age) {  // the test itself takes time, too
        told = told || refused == this->tooOld(std::to_string(age));
    }
    EXPECT_TRUE(told) << refused;
    EXPECT_EQ(this->take("valve"), "12");
    EXPECT_EQ(this->put("pump", "4"), "stored");
    EXPECT_EQ(this->take("valve"), "4");
}

TYPED_TEST(QueueLimitsOfStores, AClockThatIsSetBackMakesNoEventTooOld) {
    this->limit({.events = {}, .bytes = {}, .seconds = 60});
    EXPECT_EQ(this->put("pump", "1"), "stored");
    this->kind->passTime(-1000);
    EXPECT_EQ(this->put("pump", "2"), "stored");
}

TYPED_TEST(QueueLimitsOfStores, TheSlowestClientCountsAndTheTextNamesIt) {
    this->limit({.events = 1, .bytes = {}, .seconds = {}});
    this->join("motor");
    EXPECT_EQ(this->put("pump", "1"), "stored");
    const std::string limit = "1 event for a client (limit-events=1)";
    EXPECT_EQ(this->put("pump", "2"),
              this->tooMany(limit, "2 events", "motor"));
    this->take("motor");
    EXPECT_EQ(this->put("pump", "2"),
              this->tooMany(limit, "2 events", "valve"));
    this->kind->store.unregisterClient({"plant", "valve"});
    EXPECT_EQ(this->put("pump", "2"), "stored");
    EXPECT_EQ(this->take("motor"), "2");
}

TYPED_TEST(QueueLimitsOfStores, EveryServerHasLimitsOfItsOwn) {
    this->limit({.events = 1, .bytes = 3, .seconds = {}});
    EXPECT_EQ(this->put("pump", "1"), "stored");
    this->kind->store.registerClient({"office", "printer"});
    this->kind->store.registerClient({"office", "phone"});
    EXPECT_NE(this->kind->store.putEvents({"office", "phone"}, "abc"), nullptr);
}

TYPED_TEST(QueueLimitsOfStores, WhatASenderHasPutItselfDoesNotHoldItUp) {
    this->limit({.events = 1, .bytes = {}, .seconds = {}});
    EXPECT_EQ(this->put("valve", "a"), "stored");
    const auto got = this->kind->store.getEvents({"plant", "pump"});
    this->kind->store.consume({"plant", "pump"}, got->upto);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(this->put("pump", "b"), "stored");
        this->kind->store.consume({"plant", "pump"}, got->upto);
        EXPECT_EQ(this->take("valve"), "b");
    }
}

TYPED_TEST(QueueLimitsOfStores, AnOwnEventBeforeTheConsumeDoesNotCountLater) {
    this->limit({.events = 2, .bytes = {}, .seconds = {}});
    EXPECT_EQ(this->put("valve", "a"), "stored");
    const auto got = this->kind->store.getEvents({"plant", "pump"});
    EXPECT_EQ(this->put("pump", "b"), "stored");
    this->kind->store.consume({"plant", "pump"}, got->upto);
    EXPECT_EQ(this->take("valve"), "b");
    EXPECT_EQ(this->put("pump", "c"), "stored");
    EXPECT_EQ(this->put("pump", "d"), "stored");
    EXPECT_EQ(this->take("valve"), "cd");
}

TYPED_TEST(QueueLimitsOfStores, WhatNobodyWaitsForIsDroppedAsWithoutLimits) {
    this->limit({.events = 1, .bytes = 1, .seconds = 1});
    this->kind->store.unregisterClient({"plant", "valve"});
    EXPECT_EQ(this->put("pump", "dropped"), "stored");
    this->join("valve");
    EXPECT_EQ(this->put("pump", ""), "stored");
    EXPECT_EQ(this->take("valve"), "");
}
