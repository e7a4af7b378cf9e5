#ifndef EMULATOR_STORE_SQLITEFILE_H
#define EMULATOR_STORE_SQLITEFILE_H

#include <cstdint>
#include <memory>
#include <string>

#include "emulator/store/ForkLock.h"
#include "emulator/store/SqliteOptions.h"

namespace SQLite {
class Database;
}

namespace Orvane::Net::OvModelEventManager::Emulator {

class StoreFiles;

// Opens the file of a store, and makes it one if it is new: write-ahead log,
// tables, marks by which it is known again. Passes the gate only if the file is
// new, or to cut a log that has grown large.
//
// The log stays when the connection is closed, unless keepLogAtClose says
// otherwise.
//
// THROWS: StoreError for a file of another program or of a later version, and
// at the deadline; SQLite::Exception when it cannot be opened.
std::unique_ptr<SQLite::Database> openSqliteFile(const SqliteOptions& options,
                                                 Deadline deadline);

// Opens the file of a store for reading only, whatever it holds.
//
// THROWS: StoreError when there is no store, SQLite::Exception.
std::unique_ptr<SQLite::Database> openSqliteFileToRead(
    const SqliteOptions& options, Deadline deadline);

// Refuses a file that another program made, or another version, and one with
// tables, views or triggers that are not a store's own.
//
// THROWS: StoreError, SQLite::Exception.
void requireStore(SQLite::Database& database, const std::string& path);

// Writes a log back into the file and cuts it if it is longer than `bytes`, and
// nobody else is in the middle of a read. Passes the gate for that. The store
// can be used whether it was done or not.
void cutLog(SQLite::Database& database, const StoreFiles& files,
            std::uintmax_t bytes, Deadline deadline);

// Whether the last connection that is closed leaves the log, or writes it back
// into the file, which needs the gate.
void keepLogAtClose(SQLite::Database& database, bool keep) noexcept;

// How long a call may still wait, as SQLite takes it.
int millisecondsUntil(Deadline deadline);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
