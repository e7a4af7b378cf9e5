#include "emulator/store/SqliteStatements.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

SqliteStatements::SqliteStatements(SQLite::Database& database)
    : transaction(database),
      member(database,
             "SELECT s.id, s.next, s.epoch, s.bytes, s.members, s.checksum, "
             "c.cursor, c.checksum FROM server s "
             "JOIN client c ON c.server = s.id AND c.name = ?2 "
             "WHERE s.name = ?1"),
      server(database,
             "SELECT id, next, epoch, bytes, members, checksum FROM server "
             "WHERE name = ?1"),
      newServer(database,
                "SELECT id, EXISTS (SELECT 1 FROM server NOT INDEXED "
                "WHERE name = ?1) OR "
                "EXISTS (SELECT 1 FROM client WHERE server >= new.id) OR "
                "EXISTS (SELECT 1 FROM event WHERE server >= new.id) "
                "FROM (SELECT ifnull(max(id), 0) + 1 AS id FROM server) new"),
      addServer(database,
                "INSERT INTO server "
                "(id, name, next, epoch, bytes, members, checksum) "
                "VALUES (?1, ?2, 1, 0, 0, 0, 0)"),
      writeServer(database,
                  "UPDATE server SET next = ?2, epoch = ?3, bytes = ?4, "
                  "members = ?5, checksum = ?6 WHERE id = ?1"),
      addClient(database,
                "INSERT INTO client (server, name, cursor, checksum) "
                "VALUES (?1, ?2, ?3, ?4)"),
      removeClient(database,
                   "DELETE FROM client WHERE server = ?1 AND name = ?2"),
      clients(database,
              "SELECT name FROM client WHERE server = ?1 ORDER BY name"),
      addEvent(database,
               "INSERT INTO event (server, number, sender, origin, checksum, "
               "start, time, body) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)"),
      moveCursor(database,
                 "UPDATE client SET cursor = ?3, checksum = ?4 "
                 "WHERE server = ?1 AND name = ?2"),
      cursorInIndex(database,
                    "SELECT 1 FROM client INDEXED BY client_cursor "
                    "WHERE server = ?1 AND cursor = ?2 AND name = ?3"),
      pending(database,
              "SELECT number, sender, origin, checksum, start, time, body "
              "FROM event "
              "WHERE server = ?1 AND number > ?2 ORDER BY number") {}

std::int64_t SqliteRun::integer(int column) const {
    return statement.getColumn(column).getInt64();
}

std::string_view SqliteRun::bytes(int column) const {
    const SQLite::Column value = statement.getColumn(column);
    const auto* data = static_cast<const char*>(value.getBlob());
    const auto size = static_cast<std::size_t>(value.getBytes());
    return size == 0 ? std::string_view() : std::string_view(data, size);
}

void SqliteRun::bind(int index, std::string_view value) {
    // A null pointer would be stored as NULL, not as an empty blob.
    statement.bindNoCopy(index, value.empty() ? "" : value.data(),
                         static_cast<int>(value.size()));
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
