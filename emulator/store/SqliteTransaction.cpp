#include "emulator/store/SqliteTransaction.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// A statement that failed is as ready for its next run as one that did not.
void run(SQLite::Statement& statement) {
    try {
        statement.exec();
    } catch (...) {
        statement.tryReset();
        throw;
    }
    statement.tryReset();
}

}  // namespace

SqliteTransactionStatements::SqliteTransactionStatements(
    SQLite::Database& database)
    : beginRead(database, "BEGIN"),
      beginWrite(database, "BEGIN IMMEDIATE"),
      commit(database, "COMMIT"),
      rollback(database, "ROLLBACK") {}

SqliteTransaction::SqliteTransaction(SqliteTransactionStatements& prepared,
                                     Kind kind)
    : statements(prepared) {
    run(kind == Kind::read ? statements.beginRead : statements.beginWrite);
}

SqliteTransaction::~SqliteTransaction() {
    if (!committed) {
        statements.rollback.tryExecuteStep();
        statements.rollback.tryReset();
    }
}

void SqliteTransaction::commit() {
    run(statements.commit);
    committed = true;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
