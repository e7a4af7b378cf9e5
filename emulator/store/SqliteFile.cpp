#include "emulator/store/SqliteFile.h"

#include <string>

#include <SQLiteCpp/SQLiteCpp.h>

#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr int applicationId = 0x4F764D45;  // "OvME"
constexpr int schemaVersion = 1;

// The sender stands before the body, so that looking for the events of others
// does not walk through bodies. The row id of an event has no meaning.
constexpr const char* schema = R"(
CREATE TABLE server (
    id INTEGER PRIMARY KEY,
    name BLOB NOT NULL UNIQUE,
    next INTEGER NOT NULL,
    epoch INTEGER NOT NULL);
CREATE TABLE client (
    server INTEGER NOT NULL,
    name BLOB NOT NULL,
    cursor INTEGER NOT NULL,
    PRIMARY KEY (server, name)) WITHOUT ROWID;
CREATE INDEX client_cursor ON client (server, cursor);
CREATE TABLE event (
    server INTEGER NOT NULL,
    number INTEGER NOT NULL,
    sender BLOB NOT NULL,
    body BLOB NOT NULL,
    PRIMARY KEY (server, number));
)";

int integer(SQLite::Database& database, const char* query) {
    return database.execAndGet(query).getInt();
}

// A server is never removed, so numbers never begin anew under an old cursor.
void createSchema(SQLite::Database& database) {
    SQLite::Transaction transaction(database);
    database.exec(schema);
    database.exec("PRAGMA application_id = " + std::to_string(applicationId));
    database.exec("PRAGMA user_version = " + std::to_string(schemaVersion));
    transaction.commit();
}

void recognise(SQLite::Database& database, const std::string& path) {
    if (integer(database, "SELECT count(*) FROM sqlite_master") == 0) {
        createSchema(database);
        return;
    }
    if (integer(database, "PRAGMA application_id") != applicationId) {
        throw StoreError("The file '" + path +
                         "' is a database of another program. Set OVMEM_STORE "
                         "to a file of its own.");
    }
    if (integer(database, "PRAGMA user_version") != schemaVersion) {
        throw StoreError("The event store '" + path +
                         "' was written by another version. Use that version, "
                         "or set OVMEM_STORE to a new file.");
    }
}

}  // namespace

std::unique_ptr<SQLite::Database> openSqliteFile(const SqliteOptions& options) {
    auto database = std::make_unique<SQLite::Database>(
        options.path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE,
        options.busyTimeoutMilliseconds);
    recognise(*database, options.path);
    const std::string mode =
        database->execAndGet("PRAGMA journal_mode = WAL").getString();
    if (mode != "wal") {
        throw StoreError("The folder of the event store '" + options.path +
                         "' does not allow a write-ahead log. Set OVMEM_STORE "
                         "to a file on a local file system.");
    }
    database->exec(options.synchronous == Synchronous::full
                       ? "PRAGMA synchronous = FULL"
                       : "PRAGMA synchronous = NORMAL");
    // Large bodies: give the log's room back, and do not write zeros over
    // what is trimmed.
    database->exec("PRAGMA journal_size_limit = 67108864");
    database->exec("PRAGMA secure_delete = FAST");
    return database;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
