#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "emulator/store/SqliteSession.h"
#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/FailingWrites.h"
#include "tests/emulator/SealedRows.h"
#include "tests/emulator/StoredEvents.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::FailingWrites;
using OvMemTest::pump;
using OvMemTest::valve;

// What is consumed goes, and with it the room that it took.

namespace {

namespace fs = std::filesystem;

class SqliteStoreSpace : public testing::Test {
protected:
    SqliteStoreSpace() {
        store.registerClient(pump);
        store.registerClient(valve);
    }

    std::int64_t number(const std::string& query) const {
        SQLite::Database file(options.path);
        return file.execAndGet(query).getInt64();
    }

    std::int64_t events() const { return number("SELECT count(*) FROM event"); }

    void change(const std::string& statement) const {
        SQLite::Database file(options.path, SQLite::OPEN_READWRITE);
        file.setBusyTimeout(10000);
        file.exec(statement);
        OvMemTest::sealRows(file);
    }

    // As many events of pump behind those that are there, queued for valve.
    void queue(int count, const std::string& body = "tick") const {
        OvMemTest::storeEvents(options.path, count, body);
    }

    // Everything is consumed, but nobody has removed it.
    void markConsumed() const {
        change(
            "UPDATE client SET cursor = (SELECT next - 1 FROM server "
            "WHERE id = client.server)");
    }

    std::string takeAll() {
        std::string all;
        for (;;) {
            const PendingEvents got = store.getEvents(valve).value();
            if (got.text.empty()) {
                return all;
            }
            store.consume(valve, got.upto);
            all += got.text;
        }
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("events.db"), Synchronous::normal};
    SqliteStore store{options};
};

// The million takes a while.
using LongSqliteStoreSpace = SqliteStoreSpace;

}  // namespace

// Puts remove next to nothing, so the get has to.
TEST_F(SqliteStoreSpace, WhoeverConsumesManyEventsRemovesThem) {
    queue(20000);
    EXPECT_EQ(takeAll().size(), 80000U);
    EXPECT_EQ(events(), 0);
}

// The get has taken its time already.
TEST_F(SqliteStoreSpace, ALargeGetLeavesMostEventsToTheNextCallThatIsNoPut) {
    const std::vector<std::function<void(SqliteStore&)>> calls{
        [](SqliteStore& now) { now.getEvents(valve); },
        [](SqliteStore& now) { now.sharedClients(pump); },
        [](SqliteStore& now) {
            now.registerClient({"office", "phone"});
        },
        [](SqliteStore& now) {
            now.unregisterClient({"office", "phone"});
        },
        [](SqliteStore& now) { now.consume(valve, 0); }};
    for (const auto& call : calls) {
        queue(1000);
        store.consume(valve, number("SELECT next - 1 FROM server"));
        EXPECT_EQ(events(), 750);
        call(store);
        EXPECT_EQ(events(), 0);
    }
}

TEST_F(SqliteStoreSpace, AGetThatBringsSomethingRemovesNothing) {
    queue(1000);
    store.consume(valve, 1000);
    store.putEvents(pump, "tock");
    EXPECT_EQ(events(), 743);
    EXPECT_EQ(store.getEvents(valve)->text, "tock");
    EXPECT_EQ(events(), 743);
    store.consume(valve, 1001);
    EXPECT_EQ(events(), 0);
}

TEST_F(SqliteStoreSpace, WhoClosesAStoreRemovesWhatWasPutOff) {
    {
        SqliteStore getter(options);
        queue(1000);
        getter.consume(valve, 1000);
        EXPECT_EQ(events(), 750);
    }
    EXPECT_EQ(events(), 0);
}

TEST_F(LongSqliteStoreSpace, AVeryLargeGetRemovesWhatItBroughtItself) {
    queue(250000);
    store.consume(valve, 250000);
    EXPECT_LT(events(), 249750);  // all, unless the time was over
}

TEST_F(LongSqliteStoreSpace, AMillionConsumedEventsAreGoneAfterAFewCommands) {
    constexpr int count = 1000000;
    queue(count);
    EXPECT_EQ(takeAll().size(), count * 4U);
    int commands = 0;
    while (events() > 0 && commands < 100) {
        store.putEvents(pump, "tock");
        EXPECT_EQ(takeAll(), "tock");
        EXPECT_EQ(store.sharedClients(pump)->size(), 2U);
        commands += 4;  // the last get brought nothing
    }
    EXPECT_EQ(events(), 0);
    EXPECT_LT(commands, 100);
}

TEST_F(LongSqliteStoreSpace, WhatAKilledProcessHasLeftGoesWithAHundredGets) {
    queue(1000000);
    markConsumed();
    for (int i = 0; i < 50; ++i) {
        store.putEvents(pump, "tock");
        EXPECT_EQ(takeAll(), "tock");
    }
    EXPECT_EQ(events(), 0);
}

TEST_F(SqliteStoreSpace, AGetRemovesWhatOthersHaveLeft) {
    queue(10000);
    markConsumed();
    store.putEvents(pump, "tock");
    EXPECT_EQ(takeAll(), "tock");
    EXPECT_EQ(events(), 0);
}

TEST_F(SqliteStoreSpace, AServerHoldsNothingAfterItsLastClientHasLeft) {
    queue(10000);
    store.unregisterClient(pump);
    EXPECT_EQ(events(), 10000);
    store.unregisterClient(valve);
    EXPECT_EQ(events(), 0);
}

TEST_F(SqliteStoreSpace, WhatADesertedServerHoldsGoesWithWhoComesElsewhere) {
    for (const bool coming : {true, false}) {
        store.registerClient(pump);
        queue(1000);
        change("DELETE FROM client WHERE server = 1");
        if (coming) {
            store.registerClient({"office", "printer"});
        } else {
            store.unregisterClient({"office", "printer"});
        }
        EXPECT_EQ(events(), 0);
    }
}

TEST_F(SqliteStoreSpace, AGetRemovesNothingThatAnotherClientHasNotGot) {
    store.registerClient({"plant", "motor"});
    change("UPDATE client SET cursor = 500 WHERE name = CAST('motor' AS BLOB)");
    queue(1000);
    EXPECT_EQ(takeAll().size(), 4000U);
    EXPECT_EQ(number("SELECT min(number) FROM event"), 501);
    EXPECT_EQ(events(), 500);
    EXPECT_EQ(store.getEvents({"plant", "motor"})->text.size(), 2000U);
}

TEST_F(SqliteStoreSpace, APutLeavesALargeEventToOthers) {
    queue(3);
    queue(1, std::string(100000, 'x'));
    queue(3);
    markConsumed();
    store.putEvents(pump, "tock");
    EXPECT_EQ(number("SELECT min(number) FROM event"), 4);
    store.putEvents(pump, "tock");
    EXPECT_EQ(number("SELECT min(number) FROM event"), 4);
    EXPECT_EQ(takeAll(), "tocktock");
    EXPECT_EQ(events(), 0);
}

// The place of the next is a lock on the first byte of the gate.
TEST_F(SqliteStoreSpace, WhoWaitsAtTheGateIsLetInAfterAFewEvents) {
    queue(1000);
    markConsumed();
    const auto limit =
        std::chrono::steady_clock::now() + std::chrono::seconds(60);
    SqliteSession session(options, limit);
    Leftover leftover{1, 1000};
    const std::string gate = options.path + ".gate";
    const int file = ::open(gate.c_str(), O_RDWR | O_CLOEXEC);
    struct flock place {};
    place.l_type = F_WRLCK;
    place.l_len = 1;
    ASSERT_EQ(::fcntl(file, F_OFD_SETLK, &place), 0);
    EXPECT_TRUE(session.tidy(leftover));
    EXPECT_EQ(events(), 750);
    EXPECT_EQ(leftover.events, 750);
    ::close(file);
    while (session.tidy(leftover)) {
    }
    EXPECT_EQ(events(), 0);
}

TEST_F(SqliteStoreSpace, ASessionRemovesNoMoreThanItsShare) {
    queue(1000);
    markConsumed();
    SqliteSession session(
        options, std::chrono::steady_clock::now() + std::chrono::seconds(60));
    Leftover leftover{1, 251};
    while (session.tidy(leftover)) {
    }
    EXPECT_EQ(events(), 500);
}

TEST_F(SqliteStoreSpace, NoFailureToTidyUpIsTheAnswerOfAGet) {
    int untidied = 0;
    for (const int error : {EIO, ENOSPC}) {
        for (long room = 0; room < 160000; room += 16384) {
            SCOPED_TRACE(room);
            queue(1000);
            const auto last = number("SELECT next - 1 FROM server");
            bool done = true;
            {
                const FailingWrites failing(error, options.path + "-wal", room);
                try {
                    store.consume(valve, last);
                } catch (const StoreError&) {
                    done = false;
                }
                // A get that brings nothing removes what was put off.
                EXPECT_EQ(store.getEvents(valve)->text.empty(), done);
            }
            EXPECT_EQ(number("SELECT cursor FROM client WHERE name = "
                             "CAST('valve' AS BLOB)") == last,
                      done);
            untidied += done && events() > 0 ? 1 : 0;
            store.putEvents(pump, "tock");
            takeAll();
            EXPECT_EQ(events(), 0);
        }
    }
    EXPECT_GT(untidied, 0);
}

TEST_F(SqliteStoreSpace, ANewStoreCanReturnItsPages) {
    constexpr int incremental = 2;
    EXPECT_EQ(number("PRAGMA auto_vacuum"), incremental);
}

TEST_F(SqliteStoreSpace, TheFileShrinksWhenALargeBacklogIsConsumed) {
    store.registerClient({"plant", "motor"});
    queue(20000, std::string(1000, 'x'));
    change(
        "UPDATE client SET cursor = 19900 "
        "WHERE name = CAST('motor' AS BLOB)");
    EXPECT_GT(number("PRAGMA page_count"), 5000);
    takeAll();
    EXPECT_EQ(number("PRAGMA freelist_count"), 1000);
    EXPECT_LT(number("PRAGMA page_count"), 1100);
    EXPECT_LT(fs::file_size(options.path), 1100U * 4096);
    EXPECT_EQ(store.getEvents({"plant", "motor"})->text,
              std::string(100 * 1000, 'x'));
    SQLite::Database file(options.path);
    EXPECT_EQ(file.execAndGet("PRAGMA integrity_check").getString(), "ok");
}

TEST_F(SqliteStoreSpace, AFewFreePagesAreKeptForEventsToCome) {
    queue(2000, std::string(1000, 'x'));
    const auto before = number("PRAGMA page_count");
    takeAll();
    EXPECT_GT(number("PRAGMA freelist_count"), 500);
    EXPECT_EQ(number("PRAGMA page_count"), before);
}

TEST_F(SqliteStoreSpace, FreePagesThatAreASmallPartOfTheFileAreKept) {
    store.registerClient({"plant", "motor"});
    queue(20000, std::string(1000, 'x'));
    takeAll();
    const auto before = number("PRAGMA page_count");
    change("UPDATE client SET cursor = 4000");
    store.consume({"plant", "motor"}, 4000);
    store.sharedClients(pump);
    EXPECT_EQ(events(), 16000);
    EXPECT_GT(number("PRAGMA freelist_count"), 1000);
    EXPECT_EQ(number("PRAGMA page_count"), before);
}
