#include "emulator/store/StoreVerification.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/QueuedEvents.h"
#include "tests/emulator/SealedRows.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::pump;
using OvMemTest::valve;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class StoreVerification : public testing::Test {
protected:
    // Events 1 to 6 of the plant; all have 1 and 2, valve has 4.
    StoreVerification() {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
        store.registerClient({"plant", "motor"});
        store.registerClient({"office", "printer"});
        for (const char* events : {"1", "2", "3", "4", "5", "6"}) {
            store.putEvents(pump, events);
        }
        store.consume(valve, 4);
        store.consume({"plant", "motor"}, 2);
    }

    void alter(const std::string& command) {
        SQLite::Database(options.path, SQLite::OPEN_READWRITE).exec(command);
    }
    void alterAndSeal(const std::string& command) {
        SQLite::Database file(options.path, SQLite::OPEN_READWRITE);
        file.exec(command);
        OvMemTest::sealRows(file);
    }

    std::vector<std::string> findings() { return verifyStore(options); }

    std::string refusal() {
        try {
            findings();
        } catch (const StoreError& error) {
            return error.what();
        }
        return "no refusal";
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("events.db"), Synchronous::full, 50};
};

}  // namespace

TEST_F(StoreVerification, FindsNothingInAStoreThatIsWhole) {
    EXPECT_THAT(findings(), IsEmpty());
    options.path = folder.file("other.db");
    SqliteStore store(options);
    store.registerClient(pump);
    EXPECT_THAT(findings(), IsEmpty());
    OvMemTest::QueuedEvents(store, 1).act(store, 100);
    EXPECT_THAT(findings(), IsEmpty()) << "while it is open";
    store.unregisterClient(pump);
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(StoreVerification, ChangesNothing) {
    const std::string before = OvMemTest::readFile(options.path);
    findings();
    EXPECT_EQ(OvMemTest::readFile(options.path), before);
}

TEST_F(StoreVerification, RefusesWhatIsNotThereAndMakesNoFile) {
    options.path = folder.file("other.db");
    EXPECT_EQ(refusal(), "There is no event store '" + options.path +
                             "'. Register a client to make one, or set "
                             "OVMEM_STORE to another file.");
    EXPECT_FALSE(std::filesystem::exists(options.path));
}

TEST_F(StoreVerification, RefusesWhatIsLockedForLongerThanItMayWait) {
    SQLite::Database other(options.path, SQLite::OPEN_READWRITE);
    other.exec("PRAGMA locking_mode = EXCLUSIVE");
    other.exec("BEGIN EXCLUSIVE");
    EXPECT_EQ(refusal(),
              "The event store '" + options.path +
                  "' is locked: another part of this process holds its lock "
                  "(database is locked). Let that process go on or end it, "
                  "then repeat the call.");
}

TEST_F(StoreVerification, RefusesAFileThatIsNoDatabase) {
    std::ofstream(options.path) << std::string(8192, 'x');
    EXPECT_EQ(refusal(), "The event store '" + options.path +
                             "' is damaged or not a store (file is not a "
                             "database). Check the disk. Put a copy of the "
                             "store back, or move the file and its gate away "
                             "to begin with an empty one. If the file is "
                             "something else, set OVMEM_STORE to another "
                             "one.");
}

TEST_F(StoreVerification, FindsATableOfAnotherProgram) {
    alter("CREATE TABLE stock (item)");
    EXPECT_THAT(findings(),
                ElementsAre("The event store '" + options.path +
                            "' holds tables, views or triggers that are not "
                            "its own, or lacks some that are. Set OVMEM_STORE "
                            "to a file that no other program changes."));
}

TEST_F(StoreVerification, FindsWhatSqliteFinds) {
    alter(
        "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = 'CREATE "
        "INDEX client_cursor ON client (server, checksum)' "
        "WHERE name = 'client_cursor'");
    alter("REINDEX client_cursor");
    alter(
        "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = 'CREATE "
        "INDEX client_cursor ON client (server, cursor)' "
        "WHERE name = 'client_cursor'");
    EXPECT_THAT(
        findings(),
        ElementsAre("SQLite finds: row 1 missing from index client_cursor.",
                    "SQLite finds: row 2 missing from index client_cursor.",
                    "SQLite finds: row 3 missing from index client_cursor.",
                    "SQLite finds: row 4 missing from index client_cursor."));
}

TEST_F(StoreVerification, FindsAPageThatCannotBeReadAndGoesOn) {
    std::fstream file(options.path, std::ios::in | std::ios::out);
    file.seekp(6 * 4096);  // the first page of the index of events
    file << std::string(4096, '\0');
    file.close();
    alter("UPDATE client SET cursor = -1 WHERE name = x'7072696E746572'");
    const auto found = findings();
    const auto has = [&](const std::string& text) {
        return std::find(found.begin(), found.end(), text) != found.end();
    };
    EXPECT_TRUE(
        has("The events of the server 'plant' cannot be read to the "
            "end: database disk image is malformed."));
    EXPECT_TRUE(
        has("What is kept of the client 'printer' of the server "
            "'office' is not what was written."));
}

TEST_F(StoreVerification, FindsAServerThatWasAltered) {
    alter("UPDATE server SET epoch = epoch + 1 WHERE id = 1");
    EXPECT_THAT(findings(), ElementsAre("What is kept of the server 'plant' is "
                                        "not what was written."));
}

TEST_F(StoreVerification, FindsAClientThatWasAltered) {
    alter("UPDATE client SET cursor = 5 WHERE name = x'76616C7665'");
    EXPECT_THAT(findings(),
                ElementsAre("What is kept of the client 'valve' of the server "
                            "'plant' is not what was written."));
}

TEST_F(StoreVerification, FindsACursorWhereNoEventCanBe) {
    alterAndSeal("UPDATE client SET cursor = 7 WHERE name = x'76616C7665'");
    EXPECT_THAT(findings(),
                ElementsAre("The cursor of the client 'valve' of the server "
                            "'plant' is at event 7, but the last one is event "
                            "6."));
    alterAndSeal("UPDATE client SET cursor = 6 WHERE name = x'76616C7665'");
    EXPECT_THAT(findings(), IsEmpty());
    alterAndSeal(
        "UPDATE client SET cursor = -1 WHERE name = x'7072696E746572'");
    EXPECT_THAT(findings(),
                ElementsAre("The cursor of the client 'printer' of the server "
                            "'office' is at event -1, but the last one is "
                            "event 0.",
                            "Event 0 of the server 'office' is missing."));
}

TEST_F(StoreVerification, TakesNoNumberForOneThatCanBeCountedOn) {
    alter(
        "UPDATE client SET cursor = 9223372036854775807 "
        "WHERE name = x'7072696E746572'");
    alter("UPDATE server SET next = -9223372036854775808 WHERE id = 2");
    EXPECT_THAT(findings(),
                ElementsAre("What is kept of the server 'office' is not what "
                            "was written.",
                            "What is kept of the client 'printer' of the "
                            "server 'office' is not what was written.",
                            "The cursor of the client 'printer' of the server "
                            "'office' is at event 9223372036854775807, but the "
                            "last one is event -9223372036854775808."));
}

TEST_F(StoreVerification, FindsAnEventWithTheLastOfAllNumbers) {
    alter("UPDATE event SET number = 9223372036854775807 WHERE number = 6");
    EXPECT_THAT(findings(),
                ElementsAre("Event 9223372036854775807 of the server 'plant', "
                            "put by 'pump', is not what was put.",
                            "Event 9223372036854775807 of the server 'plant', "
                            "put by 'pump', cannot be: the last one is event "
                            "6.",
                            "Events 6 to 9223372036854775806 of the server "
                            "'plant' are missing."));
}

TEST_F(StoreVerification, FindsAClientThatIsMissing) {
    alter("DELETE FROM client WHERE name = x'76616C7665'");
    EXPECT_THAT(findings(),
                ElementsAre("The clients of the server 'plant' are not those "
                            "that registered: one is missing, or there is one "
                            "too many."));
}

TEST_F(StoreVerification, FindsEveryEventThatWasAltered) {
    alter("UPDATE event SET body = x'37' WHERE number = 4");
    alter("UPDATE event SET start = start + 1 WHERE number = 3");
    alter("UPDATE event SET time = time - 1 WHERE number = 5");
    alter("UPDATE event SET sender = x'76616C7665' WHERE number = 6");
    EXPECT_THAT(findings(),
                ElementsAre("Event 3 of the server 'plant', put by 'pump', is "
                            "not what was put.",
                            "Event 4 of the server 'plant', put by 'pump', is "
                            "not what was put.",
                            "Event 5 of the server 'plant', put by 'pump', is "
                            "not what was put.",
                            "Event 6 of the server 'plant', put by 'valve', "
                            "is not what was put."));
}

TEST_F(StoreVerification, FindsEventsThatAreMissing) {
    alter("DELETE FROM event WHERE number = 4");
    EXPECT_THAT(findings(),
                ElementsAre("Event 4 of the server 'plant' is missing."));
    alter("DELETE FROM event WHERE number IN (3, 6)");
    EXPECT_THAT(findings(),
                ElementsAre("Events 3 to 4 of the server 'plant' are missing.",
                            "Event 6 of the server 'plant' is missing."));
    alter("DELETE FROM event");
    EXPECT_THAT(
        findings(),
        ElementsAre("Events 3 to 6 of the server 'plant' are missing."));
}

TEST_F(StoreVerification, FindsAnEventThatNobodyCanHavePut) {
    alterAndSeal(
        "UPDATE server SET next = 6 WHERE id = 1; "
        "UPDATE client SET cursor = min(cursor, 5)");
    EXPECT_THAT(findings(),
                ElementsAre("Event 6 of the server 'plant', put by 'pump', "
                            "cannot be: the last one is event 5."));
}

TEST_F(StoreVerification, FindsEventsOfAServerWithoutClients) {
    alterAndSeal("DELETE FROM client WHERE server = 1");
    EXPECT_THAT(findings(),
                ElementsAre("There are no clients of the server 'plant', but "
                            "it still keeps 4 events; the next writes remove "
                            "them."));
    alterAndSeal("DELETE FROM event WHERE number = 4");
    EXPECT_THAT(findings(),
                ElementsAre("Event 4 of the server 'plant' is missing.",
                            "There are no clients of the server 'plant', but "
                            "it still keeps 3 events; the next writes remove "
                            "them."));
    alterAndSeal("DELETE FROM event WHERE number > 3");
    EXPECT_THAT(findings(),
                ElementsAre("There are no clients of the server 'plant', but "
                            "it still keeps 1 event; the next writes remove "
                            "them."));
}

TEST_F(StoreVerification, FindsRowsOfAServerThatIsNotThere) {
    alter("DELETE FROM server WHERE id = 1");
    EXPECT_THAT(findings(),
                ElementsAre("Rows of the table client that belong to a server "
                            "1, which is not there: 3.",
                            "Rows of the table event that belong to a server "
                            "1, which is not there: 4."));
}

TEST_F(StoreVerification, EndsAfterAHundredFindings) {
    SqliteStore store(options);
    for (int i = 0; i < 101; ++i) {
        store.registerClient({"office", std::to_string(i)});
    }
    alter(
        "UPDATE client SET checksum = 1 WHERE server = 2 AND "
        "name <> x'7072696E746572'");
    const auto found = findings();
    ASSERT_EQ(found.size(), 101U);
    EXPECT_EQ(found.front(),
              "What is kept of the client '0' of the server 'office' is not "
              "what was written.");
    EXPECT_EQ(found.back(), "There is more; these are the first 100 findings.");
    alter("DELETE FROM client WHERE name = x'31'");
    alterAndSeal("UPDATE server SET epoch = 1");
    EXPECT_THAT(findings(), IsEmpty());
}
