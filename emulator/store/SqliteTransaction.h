#ifndef EMULATOR_STORE_SQLITETRANSACTION_H
#define EMULATOR_STORE_SQLITETRANSACTION_H

#include <SQLiteCpp/SQLiteCpp.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

// The statements of transactions, prepared beforehand, so that the end of one
// needs no memory.
struct SqliteTransactionStatements {
    explicit SqliteTransactionStatements(SQLite::Database& database);

    SQLite::Statement beginRead;
    SQLite::Statement beginWrite;
    SQLite::Statement commit;
    SQLite::Statement rollback;
};

// A transaction, rolled back at its end unless it was committed. A rollback may
// fail; the connection is then still in the transaction, and good for nothing
// but to be closed.
//
// THROWS: SQLite::Exception.
class SqliteTransaction {
public:
    enum class Kind {
        read,
        write  // takes the write lock at once
    };

    SqliteTransaction(SqliteTransactionStatements& prepared, Kind kind);
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;
    ~SqliteTransaction();

    void commit();

private:
    SqliteTransactionStatements& statements;
    bool committed = false;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
