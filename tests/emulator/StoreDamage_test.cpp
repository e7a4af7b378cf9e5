#include "emulator/store/StoreDamage.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/SealedRows.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::pump;
using OvMemTest::valve;

// What a store says of damage that SQLite itself does not see.

namespace {

class StoreDamage : public testing::Test {
protected:
    StoreDamage() {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
        for (const char* events : {"1", "2", "3"}) {
            store.putEvents(pump, events);
        }
        store.consume(valve, 1);
        forgetNotes();
    }

    // What the gate has noted of the commits would be noticed first.
    void forgetNotes() {
        std::filesystem::resize_file(options.path + ".gate", 1);
    }

    // Alters the file behind the back of every checksum, or with checksums
    // that fit.
    void alter(const std::vector<std::string>& commands) {
        SQLite::Database file(options.path, SQLite::OPEN_READWRITE);
        for (const std::string& command : commands) {
            file.exec(command);
        }
    }
    void alterAndSeal(const std::vector<std::string>& commands) {
        alter(commands);
        SQLite::Database file(options.path, SQLite::OPEN_READWRITE);
        OvMemTest::sealRows(file);
    }

    // What a call answers to a process that has just opened the store.
    std::string refusal(const std::function<void(SqliteStore&)>& call) {
        SqliteStore store(options);
        try {
            call(store);
        } catch (const StoreError& error) {
            return error.what();
        }
        return "no refusal";
    }

    std::string refusalToGet() {
        return refusal([](SqliteStore& store) { store.getEvents(valve); });
    }
    std::string refusalToRegister(const std::string& server,
                                  const std::string& client) {
        return refusal([&](SqliteStore& store) {
            store.registerClient({server, client});
        });
    }

    std::string missing(int number) const {
        return "Event " + std::to_string(number) +
               " of the server 'plant' is missing in the event store '" +
               options.path +
               "': the file is damaged. Check the disk. To go on without what "
               "is queued, unregister the client and register it again.";
    }
    std::string notPut(int number) const {
        return "Event " + std::to_string(number) + " of the event store '" +
               options.path +
               "' is not what was put: the file is damaged. Check the disk. "
               "To go on without what is queued, unregister the client and "
               "register it again.";
    }
    std::string notWritten(const std::string& what) const {
        return "What the event store '" + options.path + "' keeps of " + what +
               " is not what was written: the file is damaged. Check the disk. "
               "Put a copy of the store back, or move the file and its gate "
               "away to begin with an empty one.";
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("events.db")};
    const std::string ofServer = notWritten("the server 'plant'");
    const std::string ofValve =
        notWritten("the client 'valve' of the server 'plant'");
    const std::string ofClients =
        notWritten("the clients of the server 'plant'");
};

}  // namespace

TEST_F(StoreDamage, AnEventThatIsMissingBetweenOthersIsNoticed) {
    alter({"DELETE FROM event WHERE number = 2"});
    EXPECT_EQ(refusalToGet(), missing(2));
}

TEST_F(StoreDamage, LastEventsThatAreMissingAreNoticed) {
    alter({"DELETE FROM event WHERE number = 3"});
    EXPECT_EQ(refusalToGet(), missing(3));
    alter({"DELETE FROM event"});
    EXPECT_EQ(refusalToGet(), missing(2));
}

TEST_F(StoreDamage, AServerThatHasForgottenItsLastEventIsNoticed) {
    alterAndSeal({"UPDATE server SET next = 3"});
    EXPECT_EQ(refusalToGet(), missing(3));
}

TEST_F(StoreDamage, AServerThatHasForgottenWhatItsClientsHaveIsNoticed) {
    alterAndSeal({"UPDATE server SET next = 1"});
    EXPECT_EQ(refusalToGet(), ofValve);
}

TEST_F(StoreDamage, AValueOfAServerThatWasAlteredIsNoticed) {
    for (const char* change :
         {"next = next + 1", "epoch = epoch + 1", "members = members + 1",
          "checksum = checksum + 1", "id = 3"}) {
        alter({"PRAGMA foreign_keys = OFF",
               std::string("UPDATE server SET ") + change,
               "UPDATE client SET server = (SELECT id FROM server)"});
        EXPECT_EQ(refusalToGet(), ofServer) << change;
        EXPECT_EQ(refusalToRegister("plant", "motor"), ofServer) << change;
        alterAndSeal({"UPDATE server SET id = 1, next = 4",
                      "UPDATE client SET server = 1"});
        EXPECT_EQ(refusalToGet(), "no refusal");
    }
}

TEST_F(StoreDamage, ACursorThatWasAlteredIsNoticed) {
    alter({"UPDATE client SET cursor = 2 WHERE name = x'76616C7665'"});
    EXPECT_EQ(refusalToGet(), ofValve);
    alterAndSeal({"UPDATE client SET cursor = 1 WHERE name = x'76616C7665'"});
    EXPECT_EQ(refusalToGet(), "no refusal");
    alter({"UPDATE client SET checksum = 5 WHERE name = x'76616C7665'"});
    EXPECT_EQ(refusalToGet(), ofValve);
}

// Fills the index with other values, as if one of its pages were an earlier
// one.
TEST_F(StoreDamage, ACursorThatIsNotTheOneOfItsIndexIsNoticed) {
    alter({"PRAGMA writable_schema = ON",
           "UPDATE sqlite_schema SET type = 'index', sql = 'CREATE INDEX "
           "client_cursor ON client (server, checksum)' "
           "WHERE name = 'client_cursor'"});
    alter({"REINDEX client_cursor"});
    alter({"PRAGMA writable_schema = ON",
           "UPDATE sqlite_schema SET sql = 'CREATE INDEX client_cursor ON "
           "client (server, cursor)' WHERE name = 'client_cursor'"});
    EXPECT_EQ(refusalToGet(), ofValve);
}

TEST_F(StoreDamage, AClientThatIsMissingOrTooManyIsNoticedByTheNextList) {
    alter({"DELETE FROM client WHERE name = x'76616C7665'"});
    EXPECT_EQ(refusalToRegister("plant", "motor"), ofClients);
    EXPECT_EQ(refusalToRegister("plant", "valve"), ofClients);
    EXPECT_EQ(refusal([](SqliteStore& store) { store.sharedClients(pump); }),
              ofClients);
    EXPECT_EQ(refusal([](SqliteStore& store) { store.putEvents(pump, "4"); }),
              ofClients);
    alterAndSeal({});
    EXPECT_EQ(refusalToRegister("plant", "motor"), "no refusal");
    alter(
        {"INSERT INTO client SELECT server, x'21', cursor, checksum "
         "FROM client LIMIT 1"});
    EXPECT_EQ(refusal([](SqliteStore& store) { store.sharedClients(pump); }),
              ofClients);
}

TEST_F(StoreDamage, AServerThatItsIndexHasLostIsNotMadeAgain) {
    alter({"PRAGMA writable_schema = ON",
           "UPDATE sqlite_schema SET sql = replace(sql, 'name BLOB NOT NULL "
           "UNIQUE', 'name BLOB NOT NULL, other BLOB UNIQUE')"});
    alter({"REINDEX server"});
    alter({"PRAGMA writable_schema = ON",
           "UPDATE sqlite_schema SET sql = replace(sql, 'name BLOB NOT NULL, "
           "other BLOB UNIQUE', 'name BLOB NOT NULL UNIQUE')"});
    EXPECT_EQ(refusalToRegister("plant", "pump"), ofServer);
}

TEST_F(StoreDamage, ANewServerDoesNotInheritTheQueuesOfOneThatWasLost) {
    alter({"DELETE FROM server"});
    EXPECT_EQ(refusalToRegister("office", "valve"),
              notWritten("the server 'office'"));
    alter({"DELETE FROM client"});
    EXPECT_EQ(refusalToRegister("office", "valve"),
              notWritten("the server 'office'"));
    alter({"DELETE FROM event"});
    EXPECT_EQ(refusalToRegister("office", "valve"), "no refusal");
}

TEST_F(StoreDamage, ASenderIsNotTakenPastEventsThatWereAltered) {
    SqliteStore store(options);
    store.putEvents(valve, "4");
    alter({"UPDATE event SET sender = x'70756D70' WHERE number = 4"});
    store.putEvents(pump, "5");
    EXPECT_EQ(refusal([](SqliteStore& again) { again.getEvents(pump); }),
              notPut(4));
}

TEST_F(StoreDamage, WhereAnEventBeganAndWhenItWasPutIsKnown) {
    for (const char* change : {"start = start + 1", "time = time - 1"}) {
        alter(
            {std::string("UPDATE event SET ") + change + " WHERE number = 2"});
        EXPECT_EQ(refusalToGet(), notPut(2)) << change;
        alterAndSeal({});
    }
    EXPECT_EQ(refusalToGet(), "no refusal");
}

TEST_F(StoreDamage, ALimitIsNotTakenFromRowsThatWereAltered) {
    options.limits.bytes = 100;
    options.limits.seconds = 100;
    const auto refusalToPut = [this] {
        return refusal([](SqliteStore& store) { store.putEvents(pump, "4"); });
    };
    for (const char* change : {"start = start - 1000", "time = time - 1000",
                               "start = -9223372036854775807"}) {
        alter(
            {std::string("UPDATE event SET ") + change + " WHERE number = 2"});
        EXPECT_EQ(refusalToPut(), notPut(2)) << change;
        alterAndSeal(
            {"UPDATE event SET start = 1, time = unixepoch() WHERE number = "
             "2"});
    }
    alter({"UPDATE client SET cursor = 0 WHERE name = x'76616C7665'"});
    EXPECT_EQ(refusalToPut(), ofValve);
    alterAndSeal({"UPDATE client SET cursor = 1 WHERE name = x'76616C7665'"});
    EXPECT_EQ(refusalToPut(), "no refusal");
}

TEST_F(StoreDamage, ANumberThatIsTakenAlreadyIsDamage) {
    alterAndSeal({"UPDATE server SET next = 3"});
    EXPECT_EQ(refusal([](SqliteStore& store) { store.putEvents(valve, "4"); }),
              "The event store '" + options.path +
                  "' is damaged or not a store (UNIQUE constraint failed: "
                  "event.server, event.number). Check the disk. Put a copy of "
                  "the store back, or move the file and its gate away to begin "
                  "with an empty one. If the file is something else, set "
                  "OVMEM_STORE to another one.");
}
