#include "emulator/store/SqliteFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include "emulator/store/GatePassage.h"
#include "emulator/store/LogFile.h"
#include "emulator/store/SqliteFailure.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/StoreFiles.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr int applicationId = 0x4F764D45;  // "OvME"
constexpr int schemaVersion = 4;

constexpr std::uintmax_t largestLog = 4 * 1024 * 1024;  // bytes
constexpr std::chrono::seconds cutLimit{1};

// The sender stands before the body, so that looking for the events of others
// does not walk through bodies. The row id of an event has no meaning.
//
// The events of a server are one stream: server.bytes is its length, and
// event.start where an event begins in it. So the bytes behind any event are
// known without adding them up. event.time is the real time of the put, in
// seconds.
//
// Word for word as the database keeps them.
constexpr std::array<const char*, 6> schema{
    R"(CREATE TABLE server (
    id INTEGER PRIMARY KEY,
    name BLOB NOT NULL UNIQUE,
    next INTEGER NOT NULL,
    epoch INTEGER NOT NULL,
    bytes INTEGER NOT NULL,
    members INTEGER NOT NULL,
    checksum INTEGER NOT NULL))",
    R"(CREATE TABLE client (
    server INTEGER NOT NULL,
    name BLOB NOT NULL,
    cursor INTEGER NOT NULL,
    checksum INTEGER NOT NULL,
    PRIMARY KEY (server, name)) WITHOUT ROWID)",
    "CREATE INDEX client_cursor ON client (server, cursor)",
    R"(CREATE TABLE event (
    server INTEGER NOT NULL,
    number INTEGER NOT NULL,
    sender BLOB NOT NULL,
    origin INTEGER NOT NULL,
    checksum INTEGER NOT NULL,
    start INTEGER NOT NULL,
    time INTEGER NOT NULL,
    body BLOB NOT NULL,
    PRIMARY KEY (server, number)))",
    R"(CREATE TABLE put (
    server INTEGER NOT NULL,
    client BLOB NOT NULL,
    number INTEGER NOT NULL,
    digest BLOB NOT NULL,
    length INTEGER NOT NULL,
    correlation BLOB NOT NULL,
    PRIMARY KEY (server, client, number)) WITHOUT ROWID)",
    "CREATE INDEX put_digest ON put (server, client, digest)"};

int integer(SQLite::Database& database, const char* query) {
    return database.execAndGet(query).getInt();
}

// A server is never removed, so numbers never begin at 1 under an old cursor.
void createSchema(SQLite::Database& database) {
    SQLite::Transaction transaction(database);
    for (const char* object : schema) {
        database.exec(object);
    }
    database.exec("PRAGMA application_id = " + std::to_string(applicationId));
    database.exec("PRAGMA user_version = " + std::to_string(schemaVersion));
    transaction.commit();
}

bool isEmpty(SQLite::Database& database) {
    return integer(database, "SELECT count(*) FROM sqlite_master") == 0;
}

bool hasLog(SQLite::Database& database) {
    return database.execAndGet("PRAGMA journal_mode").getString() == "wal";
}

void requireLog(SQLite::Database& database, const std::string& path) {
    const std::string mode =
        database.execAndGet("PRAGMA journal_mode = WAL").getString();
    if (mode != "wal") {
        throw StoreError("The folder of the event store '" + path +
                         "' does not allow a write-ahead log. Set OVMEM_STORE "
                         "to a file on a local file system.");
    }
}

// All that has a text: not the indexes that belong to a table.
bool hasSchema(SQLite::Database& database) {
    SQLite::Statement objects(
        database, "SELECT sql FROM sqlite_master WHERE sql NOT NULL");
    std::size_t known = 0;
    while (objects.executeStep()) {
        const std::string text = objects.getColumn(0).getString();
        if (std::find(schema.begin(), schema.end(), text) == schema.end()) {
            return false;
        }
        ++known;
    }
    return known == schema.size();
}

void requireOurs(SQLite::Database& database, const std::string& path) {
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
    if (!hasSchema(database)) {
        throw StoreError("The event store '" + path +
                         "' holds tables, views or triggers that are not its "
                         "own, or lacks some that are. Set OVMEM_STORE to a "
                         "file that no other program changes.");
    }
}

// Beside a file that is refused nothing stays: neither log nor index.
void requireOursOrLeave(SQLite::Database& database, const std::string& path) {
    try {
        requireOurs(database, path);
    } catch (const StoreError&) {
        keepLogAtClose(database, false);
        throw;
    }
}

// SQLite opens for reading alone what it cannot open for writing.
void requireWritable(SQLite::Database& database) {
    if (::sqlite3_db_readonly(database.getHandle(), "main") == 1) {
        throw SQLite::Exception("the file can only be read", SQLITE_CANTOPEN);
    }
}

// The log comes before the tables, so that whoever sees the tables can count on
// the log.
void makeStore(SQLite::Database& database, const SqliteOptions& options,
               Deadline deadline) {
    const StoreFiles files(options);
    const GatePassage passage(files.gate(), deadline, files.fileMode());
    if (isEmpty(database)) {
        if (files.isRemembered()) {
            throw StoreError("The event store '" + options.path +
                             "' has been emptied, and its gate '" +
                             files.gate() +
                             "' is still there. Put the store back, or remove "
                             "the gate to begin with an empty one.");
        }
        // Free pages can be returned later only if this comes before
        // everything else.
        database.exec("PRAGMA auto_vacuum = INCREMENTAL");
        requireLog(database, options.path);
        createSchema(database);
        files.rememberInGate();
    }
    requireOurs(database, options.path);
    requireLog(database, options.path);
}

// A folder may be reached through links, the file itself may not.
std::string withoutLinks(const std::string& path) {
    const std::filesystem::path file(path);
    std::error_code error;
    const auto folder = std::filesystem::canonical(file.parent_path(), error);
    return error ? path : (folder / file.filename()).string();
}

void requireLogOfIndex(SQLite::Database& database, const StoreFiles& files,
                       Deadline deadline) {
    if (isLogOfIndex(database)) {
        return;
    }
    const GatePassage passage(files.gate(), deadline, files.fileMode());
    if (!isLogOfIndex(database)) {
        throw StoreError("The log '" + files.log() +
                         "' of the event store was removed or replaced "
                         "while another process uses it. Let that process "
                         "make its next call, or end it, then repeat the "
                         "call.");
    }
}

void prepare(SQLite::Database& database, const SqliteOptions& options,
             Deadline deadline) {
    keepLogAtClose(database, true);
    requireWritable(database);
    const bool isNew = isEmpty(database);
    if (!isNew) {
        requireOursOrLeave(database, options.path);
    }
    if (isNew || !hasLog(database)) {
        makeStore(database, options, deadline);
    }
    database.exec(options.synchronous == Synchronous::full
                      ? "PRAGMA synchronous = FULL"
                      : "PRAGMA synchronous = NORMAL");
    // After large bodies, give the log's room back; and do not write zeros over
    // what is trimmed.
    database.exec("PRAGMA journal_size_limit = " + std::to_string(largestLog));
    database.exec("PRAGMA secure_delete = FAST");
    // Processes that come one after the other never start the log from its
    // beginning, since each has it open alone and for a moment.
    cutLog(database, StoreFiles(options), largestLog, deadline);
}

}  // namespace

std::unique_ptr<SQLite::Database> openSqliteFile(const SqliteOptions& options,
                                                 Deadline deadline) {
    const StoreFiles files(options);
    if (!files.exist()) {
        files.makePlace();
        const GatePassage passage(files.gate(), deadline, files.fileMode());
        files.makeDatabase();
    }
    std::unique_ptr<SQLite::Database> database;
    errno = 0;
    try {
        database = std::make_unique<SQLite::Database>(
            withoutLinks(options.path),
            SQLite::OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW,
            millisecondsUntil(deadline));
        prepare(*database, options, deadline);
        requireLogOfIndex(*database, files, deadline);
    } catch (const SQLite::Exception& error) {
        const int systemError =
            database ? ::sqlite3_system_errno(database->getHandle()) : errno;
        if (database) {
            // It may be the reason why the file could not be read.
            requireLogOfIndex(*database, files, deadline);
        }
        throw SqliteOpenFailure(error, systemError);
    }
    return database;
}

std::unique_ptr<SQLite::Database> openSqliteFileToRead(
    const SqliteOptions& options, Deadline deadline) {
    if (!StoreFiles(options).exist()) {
        throw StoreError("There is no event store '" + options.path +
                         "'. Register a client to make one, or set "
                         "OVMEM_STORE to another file.");
    }
    return std::make_unique<SQLite::Database>(
        withoutLinks(options.path),
        SQLite::OPEN_READONLY | SQLITE_OPEN_NOFOLLOW,
        millisecondsUntil(deadline));
}

void requireStore(SQLite::Database& database, const std::string& path) {
    requireOurs(database, path);
}

void cutLog(SQLite::Database& database, const StoreFiles& files,
            std::uintmax_t bytes, Deadline deadline) {
    std::error_code error;
    const auto size = std::filesystem::file_size(files.log(), error);
    if (error || size <= bytes) {
        return;
    }
    try {
        const GatePassage passage(
            files.gate(),
            std::min(deadline, std::chrono::steady_clock::now() + cutLimit),
            files.fileMode());
        database.setBusyTimeout(0);  // a reader may be stopped
        database.exec("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const SQLite::Exception&) {
        // The log stays.
    } catch (const StoreError&) {
    }
    database.setBusyTimeout(millisecondsUntil(deadline));
}

void keepLogAtClose(SQLite::Database& database, bool keep) noexcept {
    ::sqlite3_db_config(database.getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE,
                        keep ? 1 : 0, nullptr);
}

int millisecondsUntil(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
