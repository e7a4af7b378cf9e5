#include "bench/RawSqlite.h"

#include <stdexcept>

namespace Orvane::Net::OvModelEventManager::Bench {

RawSqlite::RawSqlite(const std::string& file, const std::string& synchronous) {
    sqlite3* opened = nullptr;
    const int status = sqlite3_open(file.c_str(), &opened);
    database.reset(opened);
    require(status == SQLITE_OK);
    const std::string schema =
        "PRAGMA journal_mode = WAL;"
        "PRAGMA synchronous = " +
        synchronous +
        ";PRAGMA journal_size_limit = 67108864;"
        "PRAGMA secure_delete = FAST;"
        "CREATE TABLE IF NOT EXISTS event "
        "(number INTEGER PRIMARY KEY, body BLOB NOT NULL);";
    require(sqlite3_exec(database.get(), schema.c_str(), nullptr, nullptr,
                         nullptr) == SQLITE_OK);
    begin = prepare("BEGIN IMMEDIATE");
    insert = prepare("INSERT INTO event (body) VALUES (?1)");
    commit = prepare("COMMIT");
    select = prepare("SELECT body FROM event ORDER BY number");
}

void RawSqlite::put(const std::string& event) {
    run(begin);
    require(sqlite3_bind_blob(insert.get(), 1, event.data(),
                              static_cast<int>(event.size()),
                              SQLITE_STATIC) == SQLITE_OK);
    run(insert);
    run(commit);
}

void RawSqlite::getAll(std::string& events) {
    while (sqlite3_step(select.get()) == SQLITE_ROW) {
        const void* body = sqlite3_column_blob(select.get(), 0);
        const int length = sqlite3_column_bytes(select.get(), 0);
        events.append(static_cast<const char*>(body),
                      static_cast<std::size_t>(length));
    }
    require(sqlite3_reset(select.get()) == SQLITE_OK);
}

void RawSqlite::require(bool holds) const {
    if (!holds) {
        throw std::runtime_error(sqlite3_errmsg(database.get()));
    }
}

RawSqlite::Statement RawSqlite::prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    require(sqlite3_prepare_v3(database.get(), sql, -1,
                               SQLITE_PREPARE_PERSISTENT, &statement,
                               nullptr) == SQLITE_OK);
    return Statement(statement);
}

void RawSqlite::run(const Statement& statement) {
    require(sqlite3_step(statement.get()) == SQLITE_DONE);
    require(sqlite3_reset(statement.get()) == SQLITE_OK);
}

}  // namespace Orvane::Net::OvModelEventManager::Bench
