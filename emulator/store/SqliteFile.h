#ifndef EMULATOR_STORE_SQLITEFILE_H
#define EMULATOR_STORE_SQLITEFILE_H

#include <memory>

#include "emulator/store/SqliteOptions.h"

namespace SQLite {
class Database;
}

namespace Orvane::Net::OvModelEventManager::Emulator {

// Opens the file of a store, and makes it one if it is new: write-ahead log,
// tables, marks by which it is known again. To be called inside the gate.
//
// THROWS: StoreError for a file of another program or of a later version;
// SQLite::Exception when it cannot be opened.
std::unique_ptr<SQLite::Database> openSqliteFile(const SqliteOptions& options);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
