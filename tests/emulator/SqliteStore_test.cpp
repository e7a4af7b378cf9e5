#include "emulator/store/SqliteStore.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "emulator/store/SqliteFile.h"
#include "emulator/store/SqliteSession.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/FailingWrites.h"
#include "tests/emulator/SealedRows.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::FailingWrites;
using testing::ElementsAre;

namespace {

class SqliteStoreTest : public testing::Test {
protected:
    const Identity pump{"plant", "pump"};
    const Identity valve{"plant", "valve"};

    // The text of the StoreError that `work` throws.
    static std::string refusal(const std::function<void()>& work) {
        try {
            work();
        } catch (const StoreError& error) {
            return error.what();
        }
        return "no refusal";
    }

    std::string refusalToOpen() {
        return refusal([this] { SqliteStore(options).open(); });
    }

    std::int64_t number(const char* query) {
        SQLite::Database file(options.path);
        return file.execAndGet(query).getInt64();
    }

    // As many events, which pump and valve have consumed.
    void fillWithConsumed(int count) {
        SQLite::Database file(options.path, SQLite::OPEN_READWRITE);
        SQLite::Transaction transaction(file);
        file.exec(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
            "FROM n WHERE i < " +
            std::to_string(count) +
            ") INSERT INTO event SELECT 1, i, x'', 0, 0, 4 * i, 0, 'tick' "
            "FROM n");
        file.exec("UPDATE server SET next = " + std::to_string(count + 1));
        file.exec("UPDATE client SET cursor = " + std::to_string(count));
        transaction.commit();
        OvMemTest::sealRows(file);
    }

    static Deadline soon() {
        return std::chrono::steady_clock::now() + std::chrono::seconds(10);
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("events.db"), Synchronous::full, 50};
};

}  // namespace

TEST_F(SqliteStoreTest, EverythingSurvivesTheStoreObject) {
    {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
        store.putEvents(pump, "one");
        store.putEvents(pump, "two");
        const auto got = store.getEvents(valve);
        store.putEvents(pump, "three");
        store.consume(valve, got->upto);
    }
    SqliteStore store(options);
    EXPECT_EQ(store.getEvents(valve)->text, "three");
    EXPECT_THAT(*store.registerClient({"plant", "motor"}),
                ElementsAre("motor", "pump", "valve"));
}

TEST_F(SqliteStoreTest, ClosingTheLastOneLeavesTheFileAndItsGateAlone) {
    {
        SqliteStore store(options);
        store.registerClient(pump);
        EXPECT_TRUE(std::filesystem::exists(options.path + "-wal"));
    }
    EXPECT_TRUE(std::filesystem::exists(options.path));
    EXPECT_TRUE(std::filesystem::exists(options.path + ".gate"));
    EXPECT_FALSE(std::filesystem::exists(options.path + "-wal"));
    EXPECT_FALSE(std::filesystem::exists(options.path + "-shm"));
}

TEST_F(SqliteStoreTest, TheFileIsOpenedAsTheOptionsSay) {
    constexpr int full = 2;
    constexpr int normal = 1;
    const auto file = openSqliteFile(options, soon());
    EXPECT_EQ(file->execAndGet("PRAGMA journal_mode").getString(), "wal");
    EXPECT_EQ(file->execAndGet("PRAGMA synchronous").getInt(), full);
    options.synchronous = Synchronous::normal;
    EXPECT_EQ(openSqliteFile(options, soon())
                  ->execAndGet("PRAGMA synchronous")
                  .getInt(),
              normal);
}

TEST_F(SqliteStoreTest, TwoStoresOfOneFileAreOneStore) {
    SqliteStore first(options);
    SqliteStore second(options);
    first.registerClient(pump);
    EXPECT_THAT(*second.registerClient(valve), ElementsAre("pump", "valve"));
    EXPECT_THAT(*first.putEvents(pump, "open"), ElementsAre("pump", "valve"));
    EXPECT_EQ(second.getEvents(valve)->text, "open");
    second.unregisterClient(valve);
    EXPECT_THAT(*first.sharedClients(pump), ElementsAre("pump"));
}

TEST_F(SqliteStoreTest, AListIsKeptForAsLongAsTheEpochStays) {
    options.synchronous = Synchronous::normal;  // a thousand commits
    SqliteStore first(options);
    SqliteStore second(options);
    for (int i = 0; i < 1000; ++i) {
        first.registerClient({"plant", std::to_string(i)});
    }
    const ClientList list = first.putEvents({"plant", "0"}, "a");
    EXPECT_EQ(list->size(), 1000U);
    EXPECT_EQ(first.putEvents({"plant", "999"}, "b"), list);
    second.unregisterClient({"plant", "500"});
    const ClientList fewer = first.putEvents({"plant", "999"}, "c");
    EXPECT_EQ(fewer->size(), 999U);
    EXPECT_EQ(first.putEvents({"plant", "0"}, "d"), fewer);
}

TEST_F(SqliteStoreTest, APutRemovesAFewOfTheEventsThatAllHaveConsumed) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    for (int i = 0; i < 100; ++i) {
        store.putEvents(pump, "tick");
    }
    EXPECT_EQ(number("SELECT count(*) FROM event"), 100);
    {
        SQLite::Database file(options.path, SQLite::OPEN_READWRITE);
        file.exec("UPDATE client SET cursor = 100");
        OvMemTest::sealRows(file);
    }
    store.putEvents(pump, "tick");
    EXPECT_EQ(number("SELECT count(*) FROM event"), 93);
    store.putEvents(pump, "tick");
    EXPECT_EQ(number("SELECT count(*) FROM event"), 86);
    store.consume(valve, 102);
    EXPECT_EQ(number("SELECT count(*) FROM event"), 0);
}

TEST_F(SqliteStoreTest, AHundredThousandConsumedEventsAreGoneAfterAFewGets) {
    options.synchronous = Synchronous::normal;
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    fillWithConsumed(100000);
    int gets = 0;
    for (; number("SELECT count(*) FROM event") > 0 && gets < 101; ++gets) {
        store.consume(valve, 100000);
    }
    EXPECT_LE(gets, 100);
}

TEST_F(SqliteStoreTest, AServerWithoutClientsKeepsNoEvents) {
    options.synchronous = Synchronous::normal;
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    fillWithConsumed(100000);
    store.unregisterClient(pump);
    store.unregisterClient(valve);
    // The rest goes with what clients of other servers do.
    int commands = 0;
    for (; number("SELECT count(*) FROM event") > 0 && commands < 101;
         ++commands) {
        store.registerClient({"office", std::to_string(commands)});
    }
    EXPECT_LE(commands, 100);
}

TEST_F(SqliteStoreTest, NumbersGoOnAfterTheLastClientHasLeft) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    store.putEvents(pump, "one");
    store.unregisterClient(pump);
    store.unregisterClient(valve);
    EXPECT_EQ(number("SELECT next FROM server"), 2);
    store.registerClient(pump);
    EXPECT_EQ(number("SELECT cursor FROM client"), 1);
}

TEST_F(SqliteStoreTest, AFileThatIsNoDatabaseIsRefusedAndLeftAlone) {
    const std::string content(8192, 'x');
    std::ofstream(options.path) << content;
    EXPECT_EQ(refusalToOpen(),
              "The event store '" + options.path +
                  "' is damaged or not a store (file is not a database). Check "
                  "the disk. Put a copy of the store back, or move the file "
                  "and its gate away to begin with an empty one. If the file "
                  "is something else, set OVMEM_STORE to another one.");
    std::ifstream file(options.path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), content);
}

TEST_F(SqliteStoreTest, ADamagedStoreIsReported) {
    {
        SqliteStore store(options);
        store.registerClient(pump);
    }
    std::fstream file(options.path, std::ios::in | std::ios::out);
    file.seekp(100);  // behind the header: the page of the schema
    file << std::string(3000, '\xEE');
    file.close();
    EXPECT_EQ(refusalToOpen(),
              "The event store '" + options.path +
                  "' is damaged or not a store (database disk image is "
                  "malformed). Check the disk. Put a copy of the store back, "
                  "or move the file and its gate away to begin with an empty "
                  "one. If the file is something else, set OVMEM_STORE to "
                  "another one.");
}

TEST_F(SqliteStoreTest, AFileThatWasMovedAwayWithItsGateMakesRoomForANewOne) {
    SqliteStore(options).registerClient(pump);
    std::ofstream(options.path) << std::string(8192, 'x');
    EXPECT_NE(refusalToOpen(), "no refusal");
    for (const char* part : {"", ".gate"}) {
        std::filesystem::rename(options.path + part,
                                folder.file("away") + part);
    }
    EXPECT_EQ(refusalToOpen(), "no refusal");
    EXPECT_NE(SqliteStore(options).registerClient(pump), nullptr);
}

TEST_F(SqliteStoreTest, ADatabaseOfAnotherProgramIsRefused) {
    SQLite::Database(options.path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec("CREATE TABLE stock (item)");
    EXPECT_EQ(refusalToOpen(),
              "The file '" + options.path +
                  "' is a database of another program. Set OVMEM_STORE to a "
                  "file of its own.");
    EXPECT_EQ(number("SELECT count(*) FROM sqlite_master"), 1);
}

TEST_F(SqliteStoreTest, AStoreOfAnotherVersionIsRefused) {
    SqliteStore(options).registerClient(pump);
    for (const char* version : {"1", "2", "3", "5"}) {
        SQLite::Database(options.path, SQLite::OPEN_READWRITE)
            .exec(std::string("PRAGMA user_version = ") + version);
        EXPECT_EQ(refusalToOpen(),
                  "The event store '" + options.path +
                      "' was written by another version. Use that version, or "
                      "set OVMEM_STORE to a new file.");
    }
}

TEST_F(SqliteStoreTest, AStoreWithTriggersOfAnotherProgramIsRefused) {
    SqliteStore(options).registerClient(pump);
    SQLite::Database file(options.path, SQLite::OPEN_READWRITE);
    const std::string text =
        "The event store '" + options.path +
        "' holds tables, views or triggers that are not its own, or lacks "
        "some that are. Set OVMEM_STORE to a file that no other program "
        "changes.";
    file.exec(
        "CREATE TRIGGER spy AFTER INSERT ON event "
        "BEGIN DELETE FROM event; END");
    EXPECT_EQ(refusalToOpen(), text);
    file.exec("DROP TRIGGER spy");
    EXPECT_EQ(refusalToOpen(), "no refusal");
    file.exec("DROP INDEX client_cursor");
    EXPECT_EQ(refusalToOpen(), text);
}

TEST_F(SqliteStoreTest, AnEventThatWasAlteredIsNotDelivered) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    store.putEvents(pump, "12345678-1");
    store.putEvents(pump, "12345678-2");
    SQLite::Database file(options.path, SQLite::OPEN_READWRITE);
    const std::string text =
        "Event 2 of the event store '" + options.path +
        "' is not what was put: the file is damaged. Check the disk. To go "
        "on without what is queued, unregister the client and register it "
        "again.";
    for (const char* change :
         {"SET body = CAST('12345678-3' AS BLOB)",
          "SET body = CAST('12345678-2x' AS BLOB)", "SET checksum = 1",
          "SET sender = CAST('valve' AS BLOB)", "SET origin = 1"}) {
        file.exec("BEGIN");
        file.exec(std::string("UPDATE event ") + change + " WHERE number = 2");
        file.exec("COMMIT");
        EXPECT_EQ(refusal([&] { store.getEvents(valve); }), text) << change;
        store.unregisterClient(valve);
        store.registerClient(valve);
        EXPECT_EQ(store.getEvents(valve)->text, "");
        file.exec("DELETE FROM event");
        file.exec("UPDATE server SET next = 1");
        file.exec("UPDATE client SET cursor = 0");
        OvMemTest::sealRows(file);
        store.putEvents(pump, "12345678-1");
        store.putEvents(pump, "12345678-2");
    }
    EXPECT_EQ(store.getEvents(valve)->text, "12345678-112345678-2");
}

TEST_F(SqliteStoreTest, AFolderInPlaceOfTheFileIsReported) {
    std::filesystem::create_directory(options.path);
    EXPECT_EQ(refusalToOpen(),
              "The event store '" + options.path +
                  "' cannot be used (unable to open database file: Is a "
                  "directory). Make the "
                  "file and its folder readable and writable, or set "
                  "OVMEM_STORE to another file.");
}

TEST_F(SqliteStoreTest, ALockOfAnotherProgramTimesOutAndHarmsNothing) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    SQLite::Database other(options.path, SQLite::OPEN_READWRITE);
    other.exec("BEGIN IMMEDIATE");
    EXPECT_EQ(refusal([&] { store.putEvents(pump, "lost"); }),
              "The event store '" + options.path +
                  "' is locked: another part of this process holds its lock "
                  "(database is locked). Let that process go on or end it, "
                  "then repeat the call.");
    EXPECT_EQ(store.getEvents(valve)->text, "");
    other.exec("ROLLBACK");
    store.putEvents(pump, "found");
    EXPECT_EQ(store.getEvents(valve)->text, "found");
}

TEST_F(SqliteStoreTest, ALockOfAnotherProgramIsWaitedFor) {
    options.busyTimeoutMilliseconds = 10000;
    SqliteStore store(options);
    store.registerClient(pump);
    SQLite::Database other(options.path, SQLite::OPEN_READWRITE);
    other.exec("BEGIN IMMEDIATE");
    std::thread release([&other] { other.exec("ROLLBACK"); });
    EXPECT_THAT(*store.registerClient(valve), ElementsAre("pump", "valve"));
    release.join();
}

TEST_F(SqliteStoreTest, ADiskThatTheLogFillsIsFreedByWritingItBack) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    store.putEvents(pump, std::string(100000, 'x'));
    {
        const FailingWrites full(ENOSPC, options.path + "-wal", 100000);
        store.putEvents(pump, "found room");
    }
    EXPECT_EQ(store.getEvents(valve)->text,
              std::string(100000, 'x') + "found room");
}

TEST_F(SqliteStoreTest, ADiskThatIsFullAllTheSameIsReportedAndHarmsNothing) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    {
        const FailingWrites full(ENOSPC, options.path + "-wal", 0);
        EXPECT_EQ(refusal([&] { store.putEvents(pump, "lost"); }),
                  "The event store '" + options.path +
                      "' has no room left (database or disk is full). Free "
                      "space on its disk, then repeat the call.");
    }
    store.putEvents(pump, "found");
    EXPECT_EQ(store.getEvents(valve)->text, "found");
}

TEST_F(SqliteStoreTest, TheTimeBeforeACallIsTakenOffItsWaiting) {
    using std::chrono::steady_clock;
    options.busyTimeoutMilliseconds = 60000;
    SqliteSession session(options, soon());
    SQLite::Database other(options.path, SQLite::OPEN_READWRITE);
    other.exec("BEGIN IMMEDIATE");
    const auto start = steady_clock::now();
    session.waitUntil(start);
    EXPECT_THROW(session.registerClient(pump), SQLite::Exception);
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(30));
}
