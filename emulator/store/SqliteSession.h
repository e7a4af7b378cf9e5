#ifndef EMULATOR_STORE_SQLITESESSION_H
#define EMULATOR_STORE_SQLITESESSION_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "emulator/store/EventStore.h"
#include "emulator/store/FolderWatch.h"
#include "emulator/store/ForkLock.h"
#include "emulator/store/SqliteOptions.h"
#include "emulator/store/StoreFiles.h"

namespace SQLite {
class Database;
}

namespace Orvane::Net::OvModelEventManager::Emulator {

struct SqliteStatements;

struct FilesReplaced {};

// One process's open connection to a store in a SQLite file.
//
// Every write happens inside a gate (GatePassage) and a transaction that takes
// the write lock at its start. Readers need neither, nor does opening a file
// that is a store already. The list of clients is
// read only when the server's epoch, which every coming and going raises, has
// moved on; so a put costs the same however many clients there are.
//
// Threads: one at a time. It must not cross a fork.
// THROWS: StoreError, and SQLite::Exception as it comes. Writing throws
// FilesReplaced if another file bears the name of one that is open; nothing was
// written then, and the session is of no more use.
class SqliteSession : public EventStore {
public:
    // Opens the file, and makes it a store if it is new.
    SqliteSession(const SqliteOptions& options, Deadline deadline);

    // Closes the file at once. The log stays as it is.
    ~SqliteSession() override;

    // Writes the log back into the file, if nobody else has the file open and
    // the gate is free soon. Then the session is of no more use.
    void tidyUp() noexcept;

    // Writes the log back into the file, if that can be done: for the room that
    // it takes.
    void cutLog();

    // How long the next call may wait for locks of other programs. The time at
    // the gate counts, so that those who queued there do not wait one after the
    // other.
    void waitUntil(Deadline limit);

    // False when a transaction could not be ended; the session is then of no
    // more use.
    bool isAtRest() const noexcept;

    // The errno of SQLite's last system call that failed.
    int systemError() const noexcept;

    ClientList registerClient(const Identity& caller) override;
    ClientList unregisterClient(const Identity& caller) override;
    ClientList sharedClients(const Identity& caller) override;
    ClientList putEvents(const Identity& caller,
                         std::string_view events) override;
    std::optional<PendingEvents> getEvents(const Identity& caller) override;
    void consume(const Identity& caller, std::int64_t upto) override;

private:
    struct Member {  // a registered caller
        std::int64_t server = 0;
        std::int64_t next = 0;
        std::int64_t epoch = 0;
        std::int64_t cursor = 0;
    };
    struct CachedList {
        std::int64_t epoch = 0;
        ClientList clients;
    };
    class Write;

    void requireSameFiles();
    std::optional<Member> member(const Identity& caller);
    ClientList clientsOf(std::int64_t server, std::int64_t epoch);
    void setBusyTimeout();
    void remember(std::int64_t server, std::int64_t epoch,
                  const ClientList& clients) noexcept;
    void stepOverOwn(const Member& sender, const std::string& clientId,
                     std::int64_t number);
    void trim(std::int64_t server);
    void trimDeserted();

    const StoreFiles files;
    const std::string gate;
    const std::size_t portion;
    Deadline deadline;
    bool wrote = false;
    std::unique_ptr<SQLite::Database> database;
    std::unique_ptr<SqliteStatements> statements;  // end before the database
    StoreFiles::Snapshot opened;
    FolderWatch folder;
    std::map<std::int64_t, CachedList> lists;  // by server
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
