#include <string>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include "emulator/store/MemoryStore.h"
#include "emulator/store/RecentPuts.h"
#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/FailingCalls.h"
#include "tests/support/TemporaryFolder.h"

// Stores that store a put once, however often its client repeats it.

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::motor;
using OvMemTest::pump;
using OvMemTest::valve;

namespace {

struct PutsInMemory {
    explicit PutsInMemory(bool dedupe, const QueueLimits& limits = {})
        : store({.dedupe = dedupe, .limits = limits}) {}
    MemoryStore store;
};

SqliteOptions optionsFor(const std::string& path, bool dedupe,
                         const QueueLimits& limits = {}) {
    SqliteOptions options;
    options.path = path;
    options.synchronous = Synchronous::normal;  // a thousand puts and more
    options.dedupe = dedupe;
    options.limits = limits;
    return options;
}

struct PutsInSqlite {
    explicit PutsInSqlite(bool dedupe, const QueueLimits& limits = {})
        : store(optionsFor(folder.file("events.db"), dedupe, limits)) {}
    OvMemTest::TemporaryFolder folder;
    SqliteStore store;
};

std::string take(EventStore& store, const Identity& client) {
    const PendingEvents got = store.getEvents(client).value();
    store.consume(client, got.upto);
    return got.text;
}

template <typename Kind>
class RepeatedPuts : public testing::Test {
protected:
    RepeatedPuts() {
        for (const Identity& client : {pump, motor, valve}) {
            store.registerClient(client);
        }
    }

    Kind kind{true};
    EventStore& store = kind.store;
};

using PutStores = testing::Types<PutsInMemory, PutsInSqlite>;
TYPED_TEST_SUITE(RepeatedPuts, PutStores);

// One put of a store in a file, after which `rows` puts are remembered.
class RepeatedPutsInAFile : public testing::Test {
protected:
    std::int64_t remembered() const {
        return SQLite::Database(path)
            .execAndGet("SELECT count(*) FROM put")
            .getInt64();
    }

    void registerAll() const {
        SqliteStore store(optionsFor(path, true));
        store.registerClient(pump);
        store.registerClient(valve);
    }

    OvMemTest::TemporaryFolder folder;
    const std::string path = folder.file("events.db");
};

}  // namespace

TYPED_TEST(RepeatedPuts, AreAnsweredAlikeAndStoredOnce) {
    const ClientList first = this->store.putEvents(pump, "open", "run 1");
    EXPECT_EQ(this->store.putEvents(pump, "open", "run 1"), first);
    EXPECT_EQ(take(this->store, valve), "open");
    EXPECT_EQ(take(this->store, motor), "open");
}

TYPED_TEST(RepeatedPuts, AreKnownAfterTheFirstWasConsumed) {
    this->store.putEvents(pump, "open", "run 1");
    EXPECT_EQ(take(this->store, valve), "open");
    EXPECT_EQ(take(this->store, motor), "open");
    this->store.putEvents(pump, "open", "run 1");
    EXPECT_EQ(take(this->store, valve), "");
}

TYPED_TEST(RepeatedPuts, AreThoseOfTheSameClientTextAndCorrelation) {
    this->store.putEvents(pump, "a", "run 1");
    this->store.putEvents(pump, "b", "run 1");
    this->store.putEvents(pump, "a", "run 2");
    this->store.putEvents(pump, "a", "run");
    this->store.putEvents(motor, "a", "run 1");
    this->store.putEvents(pump, "aa", "run 1");
    EXPECT_EQ(take(this->store, valve), "abaaaaa");
}

TYPED_TEST(RepeatedPuts, OfAnotherServerAreOthers) {
    const Identity elsewhere{"office", "pump"};
    const Identity printer{"office", "printer"};
    this->store.registerClient(elsewhere);
    this->store.registerClient(printer);
    this->store.putEvents(pump, "open", "run 1");
    this->store.putEvents(elsewhere, "open", "run 1");
    EXPECT_EQ(take(this->store, printer), "open");
}

TYPED_TEST(RepeatedPuts, WithoutACorrelationAreAllStored) {
    this->store.putEvents(pump, "open", "");
    this->store.putEvents(pump, "open");
    EXPECT_EQ(take(this->store, valve), "openopen");
}

TYPED_TEST(RepeatedPuts, AreAllStoredWhereNobodyAskedForMore) {
    TypeParam plain(false);
    plain.store.registerClient(pump);
    plain.store.registerClient(valve);
    plain.store.putEvents(pump, "open", "run 1");
    plain.store.putEvents(pump, "open", "run 1");
    EXPECT_EQ(take(plain.store, valve), "openopen");
}

TYPED_TEST(RepeatedPuts, AreForgottenWhenTheClientUnregisters) {
    this->store.putEvents(pump, "open", "run 1");
    this->store.putEvents(motor, "open", "run 1");
    this->store.unregisterClient(pump);
    this->store.registerClient(pump);
    this->store.putEvents(pump, "open", "run 1");
    this->store.putEvents(motor, "open", "run 1");
    EXPECT_EQ(take(this->store, valve), "openopenopen");
}

TYPED_TEST(RepeatedPuts, CountAlsoWhenTheFirstHadNoReceiver) {
    TypeParam lonely(true);
    lonely.store.registerClient(pump);
    lonely.store.putEvents(pump, "open", "run 1");
    lonely.store.registerClient(valve);
    lonely.store.putEvents(pump, "open", "run 1");
    EXPECT_EQ(take(lonely.store, valve), "");
}

TYPED_TEST(RepeatedPuts, DoNotCountWhereTheFirstWasRefused) {
    const Identity stranger{"plant", "stranger"};
    EXPECT_EQ(this->store.putEvents(stranger, "open", "run 1"), nullptr);
    this->store.registerClient(stranger);
    this->store.putEvents(stranger, "open", "run 1");
    EXPECT_EQ(take(this->store, valve), "open");
}

TYPED_TEST(RepeatedPuts, AreKnownForAThousandPuts) {
    const auto put = [&](std::size_t number) {
        this->store.putEvents(pump, "x", std::to_string(number));
    };
    this->store.putEvents(motor, "m", "0");
    for (std::size_t i = 0; i < rememberedPuts; ++i) {
        put(i);
    }
    EXPECT_EQ(take(this->store, valve), "m" + std::string(1000, 'x'));
    put(0);
    EXPECT_EQ(take(this->store, valve), "");
    put(rememberedPuts);
    put(1);
    EXPECT_EQ(take(this->store, valve), "x");
    put(0);
    EXPECT_EQ(take(this->store, valve), "x");
    this->store.putEvents(motor, "m", "0");
    EXPECT_EQ(take(this->store, valve), "");
}

TYPED_TEST(RepeatedPuts, AreKnownForAThousandPutsWithoutThoseThatWereRefused) {
    QueueLimits limits;
    limits.events = rememberedPuts;
    TypeParam limited(true, limits);
    limited.store.registerClient(pump);
    limited.store.registerClient(valve);
    for (std::size_t i = 0; i < rememberedPuts; ++i) {
        limited.store.putEvents(pump, "x", std::to_string(i));
    }
    EXPECT_THROW(limited.store.putEvents(pump, "x", "refused"),
                 QueueLimitPassed);
    EXPECT_EQ(take(limited.store, valve), std::string(rememberedPuts, 'x'));
    limited.store.putEvents(pump, "x", "0");
    EXPECT_EQ(take(limited.store, valve), "");
    limited.store.putEvents(pump, "x", "refused");
    limited.store.putEvents(pump, "x", "1");
    limited.store.putEvents(pump, "x", "0");
    EXPECT_EQ(take(limited.store, valve), "xx");
}

TYPED_TEST(RepeatedPuts, MayHaveAnyBytesInTheirCorrelation) {
    std::string bytes;
    for (int value = 0; value < 256; ++value) {
        bytes += static_cast<char>(value);
    }
    this->store.putEvents(pump, "a", bytes);
    this->store.putEvents(pump, "a", bytes);
    this->store.putEvents(pump, "a", bytes.substr(0, 255));
    EXPECT_EQ(take(this->store, valve), "aa");
}

TEST_F(RepeatedPutsInAFile, AreKnownToTheNextProcess) {
    registerAll();
    SqliteStore(optionsFor(path, true)).putEvents(pump, "open", "run 1");
    SqliteStore later(optionsFor(path, true));
    later.putEvents(pump, "open", "run 1");
    EXPECT_EQ(take(later, valve), "open");
}

TEST_F(RepeatedPutsInAFile, AreBoundedForEachClientAndGoWithIt) {
    registerAll();
    SqliteStore store(optionsFor(path, true));
    for (std::size_t i = 0; i < rememberedPuts + 3; ++i) {
        store.putEvents(pump, "x", std::to_string(i));
    }
    store.putEvents(valve, "x", "1");
    EXPECT_EQ(remembered(), 1001);
    store.unregisterClient(pump);
    EXPECT_EQ(remembered(), 1);
    SqliteStore(optionsFor(path, false)).unregisterClient(valve);
    EXPECT_EQ(remembered(), 0);
}

TEST_F(RepeatedPutsInAFile, AreNotRememberedWithoutTheOption) {
    registerAll();
    SqliteStore(optionsFor(path, false)).putEvents(pump, "open", "run 1");
    EXPECT_EQ(remembered(), 0);
}

TEST_F(RepeatedPutsInAFile, CountOnlyIfTheFirstWasStored) {
    registerAll();
    int failures = 0;
    for (std::uint64_t failAt = 1; failAt < 60; ++failAt) {
        const std::string text = std::to_string(failAt) + ";";
        SqliteStore store(optionsFor(path, true));
        bool failed = false;
        {
            const OvMemTest::FailingCalls failing({failAt, EIO, true},
                                                  folder.file(""));
            try {
                store.putEvents(pump, text, "run");
            } catch (const StoreError&) {
                failed = true;
                ++failures;
            }
        }
        if (failed) {
            store.putEvents(pump, text, "run");
        }
        EXPECT_EQ(take(store, valve), text) << failAt;
    }
    EXPECT_GT(failures, 10);
}
