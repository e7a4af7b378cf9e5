#ifndef EMULATOR_STORE_SQLITESTATEMENTS_H
#define EMULATOR_STORE_SQLITESTATEMENTS_H

#include <cstdint>
#include <string>
#include <string_view>

#include <SQLiteCpp/SQLiteCpp.h>

#include "emulator/store/SqliteTransaction.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// Every statement of a SqliteSession, prepared once.
struct SqliteStatements {
    explicit SqliteStatements(SQLite::Database& database);

    SqliteTransactionStatements transaction;
    SQLite::Statement member;
    SQLite::Statement server;
    SQLite::Statement newServer;
    SQLite::Statement addServer;
    SQLite::Statement writeServer;
    SQLite::Statement addClient;
    SQLite::Statement removeClient;
    SQLite::Statement clients;
    SQLite::Statement addEvent;
    SQLite::Statement moveCursor;
    SQLite::Statement cursorInIndex;
    SQLite::Statement pending;
};

// One run of a prepared statement: binds its parameters in order, texts as
// blobs that must outlive the run, and makes the statement ready for the next
// run when it ends.
//
// THROWS: SQLite::Exception.
class SqliteRun {
public:
    template <typename... Values>
    explicit SqliteRun(SQLite::Statement& prepared, const Values&... values)
        : statement(prepared) {
        int index = 0;
        (bind(++index, values), ...);
    }
    SqliteRun(const SqliteRun&) = delete;
    SqliteRun& operator=(const SqliteRun&) = delete;
    ~SqliteRun() { statement.tryReset(); }

    // True if there is a row (the next one).
    bool step() { return statement.executeStep(); }

    // Runs a statement that gives no rows; how many it changed.
    int exec() { return statement.exec(); }

    std::int64_t integer(int column) const;

    // Valid until the next step.
    std::string_view bytes(int column) const;

private:
    void bind(int index, std::int64_t value) { statement.bind(index, value); }
    void bind(int index, std::string_view value);

    SQLite::Statement& statement;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
