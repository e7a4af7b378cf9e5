#ifndef EMULATOR_STORE_LOGFILE_H
#define EMULATOR_STORE_LOGFILE_H

namespace SQLite {
class Database;
}

namespace Orvane::Net::OvModelEventManager::Emulator {

// A log and its index are two files, and SQLite takes them for a pair by their
// names. If somebody removes or replaces a log that is in use, whoever opens
// the store next has another log with the same index: what he then reads or
// writes back is damage.

// False if the log that this connection has open is not the one of the index.
// Writers may change both meanwhile, so that only true is sure outside the
// gate.
bool isLogOfIndex(SQLite::Database& database);

// Writes the whole log back into the database. False if somebody reads what is
// in it. Inside the gate.
//
// THROWS: SQLite::Exception.
bool writeBackLog(SQLite::Database& database);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
