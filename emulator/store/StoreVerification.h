#ifndef EMULATOR_STORE_STOREVERIFICATION_H
#define EMULATOR_STORE_STOREVERIFICATION_H

#include <cstddef>
#include <string>
#include <vector>

#include "emulator/store/SqliteOptions.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

inline constexpr std::size_t mostFindings = 100;

// Reads a whole store and tells what is wrong with it: the file itself, tables
// of other programs, rows that are not what was written, events that are
// missing, cursors where no event can be, rows of servers that are not there,
// and events that nobody will get. Each finding is a sentence that names the
// server, and the client or the number of the event. No finding means that the
// store is whole.
//
// The store is opened for reading only and may be in use; what is found is true
// of one moment. SQLite may leave PATH-wal and PATH-shm there.
//
// After so many findings it ends with one that says so. Holds one event at a
// time, and those findings.
//
// REQUIRES: the process does not fork meanwhile.
// THROWS: StoreError when there is no store, or it cannot be read.
std::vector<std::string> verifyStore(const SqliteOptions& options);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
