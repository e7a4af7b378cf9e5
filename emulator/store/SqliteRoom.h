#ifndef EMULATOR_STORE_SQLITEROOM_H
#define EMULATOR_STORE_SQLITEROOM_H

#include <cstddef>
#include <string>

#include <SQLiteCpp/SQLiteCpp.h>

#include "emulator/store/QueueLimits.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

struct Member;

// Holds the puts of a session to the limits of its store. Each look costs the
// same however much is queued, and believes no row that is not what was
// written.
//
// THROWS: StoreError for damage, SQLite::Exception.
class SqliteRoom {
public:
    SqliteRoom(SQLite::Database& database, std::string path,
               const QueueLimits& queueLimits);

    // Inside the put's transaction, when all cursors are where they will be
    // after it.
    //
    // THROWS: QueueLimitPassed.
    void require(const Member& sender, std::size_t bytes);

private:
    Backlog backlog(const Member& sender);

    const std::string path;
    const QueueLimits limits;
    SQLite::Statement slowest;
    SQLite::Statement event;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
