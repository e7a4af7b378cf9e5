#include "emulator/store/EventStore.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "emulator/store/ClientListLimit.h"
#include "emulator/store/MemoryStore.h"
#include "emulator/store/SqliteStore.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// What the suite needs to know of each kind of store.

struct ContractInMemory {
    explicit ContractInMemory(std::size_t portion = portionBytes)
        : store({.portion = portion}) {}

    MemoryStore store;

    std::size_t eventCount(const std::string& server) {
        return store.eventCount(server);
    }
};

struct ContractInSqlite {
    explicit ContractInSqlite(std::size_t portion = portionBytes)
        : store(SqliteOptions{folder.file("events.db"), Synchronous::full,
                              10000, Access::owner, portion}) {}

    OvMemTest::TemporaryFolder folder;
    SqliteStore store;

    std::size_t eventCount(const std::string& server) {
        SQLite::Database file(folder.file("events.db"));
        SQLite::Statement count(file,
                                "SELECT count(*) FROM event JOIN server "
                                "ON id = server WHERE name = ?1");
        count.bind(1, server.data(), static_cast<int>(server.size()));
        count.executeStep();
        return static_cast<std::size_t>(count.getColumn(0).getInt64());
    }
};

template <typename Kind>
class EventStoreContract : public testing::Test {
protected:
    ClientList join(const std::string& client) {
        return kind.store.registerClient({"plant", client});
    }

    void put(const std::string& client, const std::string& events) {
        ASSERT_NE(kind.store.putEvents({"plant", client}, events), nullptr);
    }

    std::string pending(const std::string& client) {
        return kind.store.getEvents({"plant", client}).value().text;
    }

    std::string take(const std::string& client) {
        const PendingEvents got =
            kind.store.getEvents({"plant", client}).value();
        kind.store.consume({"plant", client}, got.upto);
        return got.text;
    }

    Kind kind;
};

using ContractStores = testing::Types<ContractInMemory, ContractInSqlite>;
TYPED_TEST_SUITE(EventStoreContract, ContractStores);

}  // namespace

TYPED_TEST(EventStoreContract, ClientsAreListedInTheOrderOfTheirBytes) {
    EXPECT_THAT(*this->join("valve"), ElementsAre("valve"));
    EXPECT_THAT(*this->join("\xC3\xA4"), ElementsAre("valve", "\xC3\xA4"));
    EXPECT_THAT(*this->join("pump"), ElementsAre("pump", "valve", "\xC3\xA4"));
    EXPECT_THAT(*this->join("Pump"),
                ElementsAre("Pump", "pump", "valve", "\xC3\xA4"));
    EXPECT_THAT(*this->kind.store.sharedClients({"plant", "pump"}),
                ElementsAre("Pump", "pump", "valve", "\xC3\xA4"));
}

TYPED_TEST(EventStoreContract, EveryServerHasClientsOfItsOwn) {
    this->join("pump");
    EXPECT_THAT(*this->kind.store.registerClient({"office", "printer"}),
                ElementsAre("printer"));
    EXPECT_THAT(*this->join("valve"), ElementsAre("pump", "valve"));
}

TYPED_TEST(EventStoreContract, TheListIsTheSameUntilSomebodyComesOrGoes) {
    this->join("pump");
    const ClientList list = this->join("valve");
    EXPECT_EQ(this->join("valve"), list);
    EXPECT_EQ(this->kind.store.sharedClients({"plant", "pump"}), list);
    EXPECT_EQ(this->kind.store.putEvents({"plant", "pump"}, "open"), list);
    const ClientList more = this->join("motor");
    EXPECT_THAT(*more, ElementsAre("motor", "pump", "valve"));
    EXPECT_THAT(*this->kind.store.unregisterClient({"plant", "motor"}),
                ElementsAre("pump", "valve"));
    EXPECT_THAT(*list, ElementsAre("pump", "valve"));
}

TYPED_TEST(EventStoreContract, AClientThatMakesTheListTooLongIsNotAdded) {
    const std::string costly(60000, '&');
    for (const char* number : {"1", "2", "3", "4", "5"}) {
        this->join(number + costly);
    }
    this->put("1" + costly, "open");
    for (int time = 0; time < 2; ++time) {
        EXPECT_THROW(this->join("6" + costly), ClientListTooLong);
        EXPECT_EQ(this->kind.store.sharedClients({"plant", "6" + costly}),
                  nullptr);
        EXPECT_EQ(
            this->kind.store.sharedClients({"plant", "2" + costly})->size(),
            5U);
    }
    // Who is there may register again.
    EXPECT_EQ(this->join("5" + costly)->size(), 5U);
    EXPECT_EQ(this->pending("5" + costly), "open");
    EXPECT_EQ(this->join("valve")->size(), 6U);
    this->kind.store.unregisterClient({"plant", "1" + costly});
    EXPECT_EQ(this->join("6" + costly)->size(), 6U);
    EXPECT_EQ(this->pending("6" + costly), "");
}

TYPED_TEST(EventStoreContract, WhoIsNotRegisteredGetsNothing) {
    this->join("pump");
    for (const Identity& stranger :
         {Identity{"plant", "valve"}, Identity{"office", "pump"},
          Identity{"", ""}}) {
        EXPECT_EQ(this->kind.store.unregisterClient(stranger), nullptr);
        EXPECT_EQ(this->kind.store.sharedClients(stranger), nullptr);
        EXPECT_EQ(this->kind.store.putEvents(stranger, "open"), nullptr);
        EXPECT_EQ(this->kind.store.getEvents(stranger), std::nullopt);
    }
    EXPECT_EQ(this->pending("pump"), "");
}

TYPED_TEST(EventStoreContract, APutReachesEveryOtherClientButNotItsSender) {
    this->join("pump");
    this->join("valve");
    this->join("motor");
    this->put("pump", "pump starts");
    EXPECT_EQ(this->pending("pump"), "");
    EXPECT_EQ(this->pending("valve"), "pump starts");
    EXPECT_EQ(this->pending("motor"), "pump starts");
}

TYPED_TEST(EventStoreContract, APutStaysWithinItsServer) {
    this->join("pump");
    this->join("valve");
    this->kind.store.registerClient({"office", "valve"});
    this->put("pump", "pump starts");
    EXPECT_EQ(this->kind.store.getEvents({"office", "valve"})->text, "");
}

TYPED_TEST(EventStoreContract, EventsComeOneAfterTheOtherAsTheyWerePut) {
    this->join("pump");
    this->join("valve");
    this->join("motor");
    this->put("pump", "1");
    this->put("valve", "2");
    this->put("pump", "3");
    this->put("motor", "4");
    EXPECT_EQ(this->pending("pump"), "24");
    EXPECT_EQ(this->pending("valve"), "134");
    EXPECT_EQ(this->pending("motor"), "123");
}

TYPED_TEST(EventStoreContract, AGetTakesNothingAway) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "one");
    EXPECT_EQ(this->pending("valve"), "one");
    this->put("pump", "two");
    EXPECT_EQ(this->pending("valve"), "onetwo");
}

TYPED_TEST(EventStoreContract, ConsumeTakesWhatWasGotAndNoMore) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "one");
    const auto got = this->kind.store.getEvents({"plant", "valve"});
    this->put("pump", "two");
    this->kind.store.consume({"plant", "valve"}, got->upto);
    EXPECT_EQ(this->take("valve"), "two");
    EXPECT_EQ(this->take("valve"), "");
}

TYPED_TEST(EventStoreContract, ConsumeNeverGoesBack) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "one");
    const auto first = this->kind.store.getEvents({"plant", "valve"});
    this->put("pump", "two");
    EXPECT_EQ(this->take("valve"), "onetwo");
    this->kind.store.consume({"plant", "valve"}, first->upto);
    EXPECT_EQ(this->pending("valve"), "");
}

// As after the store was replaced by a younger one.
TYPED_TEST(EventStoreContract, ConsumeOfWhatWasNeverPutChangesNothing) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "1");
    for (const std::int64_t upto :
         {std::int64_t{2}, std::numeric_limits<std::int64_t>::max()}) {
        this->kind.store.consume({"plant", "valve"}, upto);
        EXPECT_EQ(this->pending("valve"), "1") << upto;
    }
    this->put("pump", "2");
    EXPECT_EQ(this->take("valve"), "12");
}

TYPED_TEST(EventStoreContract, ConsumeByOneLeavesTheQueuesOfTheOthers) {
    this->join("pump");
    this->join("valve");
    this->join("motor");
    this->put("pump", "one");
    EXPECT_EQ(this->take("valve"), "one");
    EXPECT_EQ(this->take("motor"), "one");
}

TYPED_TEST(EventStoreContract, WhoComesLaterGetsNoEarlierEvents) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "early");
    this->join("motor");
    this->put("pump", "late");
    EXPECT_EQ(this->pending("motor"), "late");
    EXPECT_EQ(this->pending("valve"), "earlylate");
}

TYPED_TEST(EventStoreContract, RegisteringAgainKeepsTheQueue) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "one");
    this->join("valve");
    this->put("pump", "two");
    EXPECT_EQ(this->pending("valve"), "onetwo");
}

TYPED_TEST(EventStoreContract, UnregisteringDropsTheQueue) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "one");
    this->kind.store.unregisterClient({"plant", "valve"});
    this->join("valve");
    EXPECT_EQ(this->pending("valve"), "");
    this->put("pump", "two");
    EXPECT_EQ(this->pending("valve"), "two");
}

TYPED_TEST(EventStoreContract, EventsOutliveTheRegistrationOfTheirSender) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "last words");
    this->kind.store.unregisterClient({"plant", "pump"});
    EXPECT_EQ(this->pending("valve"), "last words");
}

TYPED_TEST(EventStoreContract, AnOldConsumeDoesNotReachANewRegistration) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "one");
    const auto got = this->kind.store.getEvents({"plant", "valve"});
    this->kind.store.unregisterClient({"plant", "valve"});
    this->kind.store.consume({"plant", "valve"}, got->upto);
    this->kind.store.unregisterClient({"plant", "pump"});
    this->join("pump");
    this->join("valve");
    this->put("pump", "two");
    this->kind.store.consume({"plant", "valve"}, got->upto);
    EXPECT_EQ(this->pending("valve"), "two");
}

TYPED_TEST(EventStoreContract, EmptyIdentitiesAreLegal) {
    EXPECT_THAT(*this->kind.store.registerClient({"", ""}), ElementsAre(""));
    EXPECT_THAT(*this->kind.store.registerClient({"", "pump"}),
                ElementsAre("", "pump"));
    this->kind.store.putEvents({"", ""}, "quiet");
    EXPECT_EQ(this->kind.store.getEvents({"", "pump"})->text, "quiet");
    EXPECT_THAT(*this->kind.store.unregisterClient({"", ""}),
                ElementsAre("pump"));
    EXPECT_THAT(*this->kind.store.unregisterClient({"", "pump"}), IsEmpty());
}

TYPED_TEST(EventStoreContract, BytesComeBackAsTheyWere) {
    std::string bytes;
    for (int value = 0; value < 256; ++value) {
        bytes += static_cast<char>(value);
    }
    this->kind.store.registerClient({bytes, bytes});
    EXPECT_THAT(*this->kind.store.registerClient({bytes, "valve"}),
                ElementsAre(bytes, "valve"));
    this->kind.store.putEvents({bytes, "valve"}, bytes);
    this->kind.store.putEvents({bytes, "valve"}, bytes);
    EXPECT_EQ(this->kind.store.getEvents({bytes, bytes})->text, bytes + bytes);
}

TYPED_TEST(EventStoreContract, AnEmptyTextQueuesNothing) {
    this->join("pump");
    const ClientList list = this->join("valve");
    EXPECT_EQ(this->kind.store.putEvents({"plant", "pump"}, ""), list);
    EXPECT_EQ(this->pending("valve"), "");
    EXPECT_EQ(this->kind.eventCount("plant"), 0U);
}

TYPED_TEST(EventStoreContract, ATextMayHaveFiftyMebibytesAndMore) {
    this->join("pump");
    this->join("valve");
    std::string large(53 * 1024 * 1024, 'e');
    large.front() = 'a';
    large.back() = 'z';
    this->put("pump", large);
    this->put("pump", "small");
    EXPECT_TRUE(this->take("valve") == large + "small");
    EXPECT_EQ(this->take("valve"), "");
}

TYPED_TEST(EventStoreContract, AGetBringsOnePortionAndTheNextGetTheNext) {
    TypeParam small(10);
    const Identity pump{"plant", "pump"};
    const Identity valve{"plant", "valve"};
    small.store.registerClient(pump);
    small.store.registerClient(valve);
    for (const char* events :
         {"12345", "67890", "1", "larger than a portion", "a", "b"}) {
        small.store.putEvents(pump, events);
        small.store.putEvents(valve, "of its own, and so passed over");
    }
    for (const char* portion :
         {"1234567890", "1", "larger than a portion", "ab", ""}) {
        const auto got = small.store.getEvents(valve);
        EXPECT_EQ(got->text, portion);
        EXPECT_EQ(small.store.getEvents(valve)->text, portion);
        small.store.consume(valve, got->upto);
    }
}

TYPED_TEST(EventStoreContract, WhatEverybodyConsumedIsRemoved) {
    this->join("pump");
    this->join("valve");
    this->join("motor");
    this->put("pump", "one");
    this->put("pump", "two");
    EXPECT_EQ(this->kind.eventCount("plant"), 2U);
    this->take("valve");
    EXPECT_EQ(this->kind.eventCount("plant"), 2U);
    this->take("motor");
    EXPECT_EQ(this->kind.eventCount("plant"), 0U);
}

TYPED_TEST(EventStoreContract, WhatOnlyAClientThatLeftWantedIsRemoved) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "one");
    this->kind.store.unregisterClient({"plant", "valve"});
    EXPECT_EQ(this->kind.eventCount("plant"), 0U);
}

TYPED_TEST(EventStoreContract, AClientThatOnlySendsKeepsNoEvents) {
    this->join("pump");
    this->join("valve");
    for (int i = 0; i < 50; ++i) {
        this->put("pump", "tick");
        EXPECT_EQ(this->take("valve"), "tick");
    }
    EXPECT_EQ(this->kind.eventCount("plant"), 0U);
}

TYPED_TEST(EventStoreContract, AnOwnEventBetweenGetAndConsumeIsSteppedOver) {
    this->join("pump");
    this->join("valve");
    this->put("valve", "a");
    const auto got = this->kind.store.getEvents({"plant", "pump"});
    this->put("pump", "b");
    this->kind.store.consume({"plant", "pump"}, got->upto);
    this->put("pump", "c");
    EXPECT_EQ(this->take("valve"), "bc");
    EXPECT_EQ(this->kind.eventCount("plant"), 0U);
}

TYPED_TEST(EventStoreContract, ASenderKeepsWhatIsPendingForIt) {
    this->join("pump");
    this->join("valve");
    this->put("pump", "a");
    this->put("valve", "b");
    this->put("pump", "c");
    this->put("pump", "d");
    EXPECT_EQ(this->take("pump"), "b");
    EXPECT_EQ(this->take("valve"), "acd");
    EXPECT_EQ(this->kind.eventCount("plant"), 0U);
}

TYPED_TEST(EventStoreContract, NobodyElseThereMeansNothingToKeep) {
    this->join("pump");
    this->put("pump", "alone");
    EXPECT_EQ(this->kind.eventCount("plant"), 0U);
    this->join("valve");
    EXPECT_EQ(this->pending("valve"), "");
}
