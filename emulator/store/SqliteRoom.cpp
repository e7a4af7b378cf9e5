#include "emulator/store/SqliteRoom.h"

#include <cstdint>
#include <utility>

#include "emulator/store/CheckedRows.h"
#include "emulator/store/EventChecksum.h"
#include "emulator/store/SqliteStatements.h"
#include "emulator/store/StoreDamage.h"
#include "emulator/store/StoreRows.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

SqliteRoom::SqliteRoom(SQLite::Database& database, std::string file,
                       const QueueLimits& queueLimits)
    : path(std::move(file)),
      limits(queueLimits),
      slowest(database,
              "SELECT cursor, name, checksum FROM client WHERE server = ?1 "
              "ORDER BY cursor, name LIMIT 1"),
      event(database,
            "SELECT start, time, sender, origin FROM event "
            "WHERE server = ?1 AND number = ?2") {}

void SqliteRoom::require(const Member& sender, std::size_t bytes) {
    try {
        requireRoom(limits, backlog(sender), bytes);
    } catch (QueueLimitPassed& passed) {
        passed.path = path;
        throw;
    }
}

// The numbers of a server have no gaps.
Backlog SqliteRoom::backlog(const Member& sender) {
    const ServerRow& server = sender.server;
    Backlog result;
    SqliteRun client(slowest, server.id);
    if (!client.step()) {
        return result;
    }
    const std::int64_t cursor = client.integer(0);
    result.clientId = client.bytes(1);
    if (client.integer(2) !=
        clientChecksum(server.id, result.clientId, cursor)) {
        throw damagedClient(path, {sender.who.serverId, result.clientId});
    }
    result.events = server.next - 1 - cursor;
    SqliteRun first(event, server.id, cursor + 1);
    if (first.step()) {
        const EventOrigin origin{server.id, cursor + 1, first.bytes(2),
                                 first.integer(0), first.integer(1)};
        if (first.integer(3) != originChecksum(origin)) {
            throw damagedEvent(path, origin.number);
        }
        result.bytes = server.bytes - origin.start;
        result.seconds = secondsSince(origin.time, secondsNow());
    }
    return result;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
