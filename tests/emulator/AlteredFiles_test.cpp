#include <cstdint>
#include <iostream>
#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Alteration.h"
#include "tests/emulator/QueuedEvents.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::Alteration;
using OvMemTest::PageLayout;
using OvMemTest::QueuedEvents;
using OvMemTest::StoreBytes;
using OvMemTest::TemporaryFolder;

namespace {

constexpr PageLayout databasePages{};
constexpr PageLayout logPages{32, 24};

enum class Found { noDifference, noticed, silent };

SqliteOptions optionsOf(const std::string& path) {
    constexpr std::size_t smallPortion = 20000;
    return {path, Synchronous::normal, 1000, Access::owner, smallPortion};
}

// Everything that is queued for a client, portion by portion. What came before
// an error is kept in `got`.
void fetch(SqliteStore& store, const Identity& client, std::string& got) {
    for (;;) {
        const auto portion = store.getEvents(client);
        if (!portion) {
            throw StoreError("not registered");
        }
        if (portion->text.empty()) {
            return;
        }
        got += portion->text;
        store.consume(client, portion->upto);
    }
}

// Every client fetches what it gets from the store at `path`. Half of them
// register first, as the tool does.
Found fetchAll(const std::string& path,
               const std::map<QueuedEvents::Client, std::string>& queues) {
    Found found = Found::noDifference;
    bool registers = false;
    SqliteStore store(optionsOf(path));
    for (const auto& [client, queued] : queues) {
        const Identity caller{client.first, client.second};
        std::string got;
        try {
            registers = !registers;
            if (registers) {
                store.registerClient(caller);
            }
            fetch(store, caller, got);
            if (got != queued) {
                return Found::silent;
            }
        } catch (const StoreError&) {
            found = Found::noticed;
            if (!queued.starts_with(got)) {
                return Found::silent;
            }
        }
    }
    return found;
}

// A store with a history: as its files were, as they are when it is closed,
// and with a log that nobody has written back.
struct Store {
    explicit Store(std::uint64_t seed) {
        const TemporaryFolder folder;
        const std::string path = folder.file("events.db");
        std::optional<SqliteStore> store(optionsOf(path));
        QueuedEvents events(*store, seed);
        events.act(*store, 300);
        store.emplace(optionsOf(path));
        events.act(*store, 200);
        older = StoreBytes::read(path);
        store.emplace(optionsOf(path));
        events.act(*store, 1);
        store.reset();
        closed = StoreBytes::read(path);
        closedQueues = events.queues();
        store.emplace(optionsOf(path));
        events.act(*store, 200);
        open = StoreBytes::read(path);
        openQueues = events.queues();
    }

    StoreBytes older;
    StoreBytes closed;
    std::map<QueuedEvents::Client, std::string> closedQueues;
    StoreBytes open;
    std::map<QueuedEvents::Client, std::string> openQueues;
};

class Altered : public testing::Test {
protected:
    // As many stores, each altered once.
    void alterDatabases(std::uint64_t seed, int count) {
        const Store store(seed);
        for (int i = 0; i < count; ++i) {
            StoreBytes bytes = store.closed;
            const std::string what =
                Alteration(seed * 1000000 + static_cast<std::uint64_t>(i),
                           databasePages, store.older.database)
                    .apply(bytes.database);
            examine(bytes, store.closedQueues, what, seed, i);
        }
    }

    void alterLogs(std::uint64_t seed, int count) {
        const Store store(seed);
        for (int i = 0; i < count; ++i) {
            StoreBytes bytes = store.open;
            const std::string what =
                Alteration(seed * 1000000 + static_cast<std::uint64_t>(i),
                           logPages, store.older.log)
                    .apply(bytes.log);
            examine(bytes, store.openQueues, what, seed, i);
        }
    }

    void examine(const StoreBytes& bytes,
                 const std::map<QueuedEvents::Client, std::string>& queues,
                 const std::string& what, std::uint64_t seed, int i) {
        const TemporaryFolder folder;
        bytes.write(folder.file("events.db"));
        const Found found = fetchAll(folder.file("events.db"), queues);
        ++counts[found];
        EXPECT_NE(found, Found::silent)
            << "seed " << seed << ", alteration " << i << ": " << what;
    }

    void TearDown() override {
        std::cout << counts[Found::noticed] << " noticed, "
                  << counts[Found::noDifference] << " without a difference, "
                  << counts[Found::silent] << " silent" << std::endl;
    }

    std::map<Found, int> counts;
};

using AlteredFiles = Altered;
using LongAlteredFiles = Altered;

}  // namespace

TEST_F(AlteredFiles, OfADatabaseNeverDeliverSomethingElseSilently) {
    alterDatabases(1, 400);
}

TEST_F(AlteredFiles, OfALogNeverDeliverSomethingElseSilently) {
    alterLogs(1, 400);
}

TEST_F(LongAlteredFiles, OfADatabaseNeverDeliverSomethingElseSilently) {
    for (std::uint64_t seed = 2; seed < 22; ++seed) {
        alterDatabases(seed, 400);
    }
}

TEST_F(LongAlteredFiles, OfALogNeverDeliverSomethingElseSilently) {
    for (std::uint64_t seed = 2; seed < 22; ++seed) {
        alterLogs(seed, 400);
    }
}
