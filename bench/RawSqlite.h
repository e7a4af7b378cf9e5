#ifndef BENCH_RAWSQLITE_H
#define BENCH_RAWSQLITE_H

#include <memory>
#include <string>

#include <sqlite3.h>

namespace Orvane::Net::OvModelEventManager::Bench {

// The least that keeps events in a SQLite file: one table, no clients, a
// transaction for each event, statements prepared once, the pragmas of the
// emulator's store.
//
// THROWS: std::runtime_error when SQLite fails.
class RawSqlite {
public:
    RawSqlite(const std::string& file, const std::string& synchronous);

    void put(const std::string& event);

    // Appends all events, one after the other.
    void getAll(std::string& events);

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
        void operator()(sqlite3_stmt* statement) const {
            sqlite3_finalize(statement);
        }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Close>;

    void require(bool holds) const;
    Statement prepare(const char* sql);
    void run(const Statement& statement);

    std::unique_ptr<sqlite3, Close> database;
    Statement begin;
    Statement insert;
    Statement commit;
    Statement select;
};

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
