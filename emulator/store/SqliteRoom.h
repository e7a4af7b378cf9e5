#ifndef EMULATOR_STORE_SQLITEROOM_H
#define EMULATOR_STORE_SQLITEROOM_H

#include <cstddef>
#include <cstdint>
#include <string>

#include <SQLiteCpp/SQLiteCpp.h>

#include "emulator/store/QueueLimits.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// Holds the puts of a session to the limits of its store. Each look costs the
// same however much is queued.
//
// THROWS: SQLite::Exception.
class SqliteRoom {
public:
    // Where a server stands before a put.
    struct Position {
        std::int64_t server = 0;
        std::int64_t next = 0;   // number of the next event
        std::int64_t bytes = 0;  // of all events so far
    };

    SqliteRoom(SQLite::Database& database, std::string path,
               const QueueLimits& queueLimits);

    // Inside the put's transaction, when all cursors are where they will be
    // after it.
    //
    // THROWS: QueueLimitPassed.
    void require(const Position& position, std::size_t bytes);

private:
    Backlog backlog(const Position& position);

    const std::string path;
    const QueueLimits limits;
    SQLite::Statement slowest;
    SQLite::Statement event;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
