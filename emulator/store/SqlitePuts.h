#ifndef EMULATOR_STORE_SQLITEPUTS_H
#define EMULATOR_STORE_SQLITEPUTS_H

#include <cstdint>
#include <string_view>

#include <SQLiteCpp/SQLiteCpp.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

// The last puts of each client (rememberedPuts), one row each, in the database
// of a store. Each step belongs into the transaction of what it is about.
//
// THROWS: SQLite::Exception.
class SqlitePuts {
public:
    explicit SqlitePuts(SQLite::Database& database);

    // Remembers a put. False if it is remembered already; then nothing changes.
    bool add(std::int64_t server, std::string_view clientId,
             std::string_view correlation, std::string_view text);

    // Forgets every put of a client.
    void forget(std::int64_t server, std::string_view clientId);

private:
    SQLite::Statement find;
    SQLite::Statement insert;
    SQLite::Statement forgetOld;
    SQLite::Statement forgetAll;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
