#include "emulator/store/SqlitePuts.h"

#include <cstddef>

#include "emulator/store/RecentPuts.h"
#include "emulator/store/SqliteStatements.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// The digest finds the row; the length and the correlation decide.
SqlitePuts::SqlitePuts(SQLite::Database& database)
    : find(database,
           "SELECT 1 FROM put WHERE server = ?1 AND client = ?2 "
           "AND digest = ?3 AND length = ?4 AND correlation = ?5"),
      insert(database,
             "INSERT INTO put "
             "(server, client, number, digest, length, correlation) "
             "VALUES (?1, ?2, ifnull((SELECT max(number) FROM put "
             "WHERE server = ?1 AND client = ?2), 0) + 1, ?3, ?4, ?5)"),
      forgetOld(database,
                "DELETE FROM put WHERE server = ?1 AND client = ?2 "
                "AND number <= (SELECT max(number) FROM put "
                "WHERE server = ?1 AND client = ?2) - ?3"),
      forgetAll(database, "DELETE FROM put WHERE server = ?1 AND client = ?2") {
}

bool SqlitePuts::add(std::int64_t server, std::string_view clientId,
                     std::string_view correlation, std::string_view text) {
    const TextDigest digest(text);
    const auto length = static_cast<std::int64_t>(text.size());
    if (SqliteRun(find, server, clientId, digest.bytes(), length, correlation)
            .step()) {
        return false;
    }
    SqliteRun(insert, server, clientId, digest.bytes(), length, correlation)
        .exec();
    SqliteRun(forgetOld, server, clientId,
              static_cast<std::int64_t>(rememberedPuts))
        .exec();
    return true;
}

void SqlitePuts::forget(std::int64_t server, std::string_view clientId) {
    SqliteRun(forgetAll, server, clientId).exec();
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
