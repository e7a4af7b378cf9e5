#include "emulator/store/SqliteRoom.h"

#include <utility>

#include "emulator/store/SqliteStatements.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

SqliteRoom::SqliteRoom(SQLite::Database& database, std::string file,
                       const QueueLimits& queueLimits)
    : path(std::move(file)),
      limits(queueLimits),
      slowest(database,
              "SELECT cursor, name FROM client WHERE server = ?1 "
              "ORDER BY cursor, name LIMIT 1"),
      event(database,
            "SELECT start, time FROM event "
            "WHERE server = ?1 AND number = ?2") {}

void SqliteRoom::require(const Position& position, std::size_t bytes) {
    try {
        requireRoom(limits, backlog(position), bytes);
    } catch (QueueLimitPassed& passed) {
        passed.path = path;
        throw;
    }
}

// The numbers of a server have no gaps.
Backlog SqliteRoom::backlog(const Position& position) {
    Backlog result;
    SqliteRun client(slowest, position.server);
    if (!client.step()) {
        return result;
    }
    const std::int64_t cursor = client.integer(0);
    result.clientId = client.bytes(1);
    result.events = position.next - 1 - cursor;
    SqliteRun first(event, position.server, cursor + 1);
    if (first.step()) {
        result.bytes = position.bytes - first.integer(0);
        result.seconds = secondsSince(first.integer(1), secondsNow());
    }
    return result;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
