#include "emulator/store/SqliteStatements.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

SqliteStatements::SqliteStatements(SQLite::Database& database)
    : transaction(database),
      member(database,
             "SELECT s.id, s.next, s.epoch, c.cursor FROM server s "
             "JOIN client c ON c.server = s.id AND c.name = ?2 "
             "WHERE s.name = ?1"),
      addServer(database,
                "INSERT INTO server (name, next, epoch) VALUES (?1, 1, 0) "
                "ON CONFLICT DO NOTHING"),
      addClient(database,
                "INSERT INTO client (server, name, cursor) "
                "SELECT id, ?2, next - 1 FROM server WHERE name = ?1"),
      removeClient(database,
                   "DELETE FROM client WHERE server = ?1 AND name = ?2"),
      raiseEpoch(database,
                 "UPDATE server SET epoch = epoch + 1 WHERE name = ?1"),
      clients(database,
              "SELECT name FROM client WHERE server = ?1 ORDER BY name"),
      addEvent(database,
               "INSERT INTO event (server, number, sender, checksum, body) "
               "VALUES (?1, ?2, ?3, ?4, ?5)"),
      takeNumber(database, "UPDATE server SET next = next + 1 WHERE id = ?1"),
      firstOfOthers(database,
                    "SELECT number FROM event "
                    "WHERE server = ?1 AND number > ?2 AND sender <> ?3 "
                    "ORDER BY number LIMIT 1"),
      moveCursor(database,
                 "UPDATE client SET cursor = ?3 "
                 "WHERE server = ?1 AND name = ?2 AND cursor < ?3"),
      pending(database,
              "SELECT body, number, checksum FROM event "
              "WHERE server = ?1 AND number > ?2 AND number <= ?3 "
              "AND sender <> ?4 ORDER BY number"),
      trim(database,
           "DELETE FROM event WHERE rowid IN (SELECT rowid FROM event "
           "WHERE server = ?1 AND number <= ifnull("
           "(SELECT min(cursor) FROM client WHERE server = ?1), "
           "9223372036854775807) ORDER BY number LIMIT ?2)"),
      deserted(database,
               "SELECT id FROM server WHERE "
               "NOT EXISTS (SELECT 1 FROM client WHERE server = id) AND "
               "EXISTS (SELECT 1 FROM event WHERE server = id) LIMIT 1") {}

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
