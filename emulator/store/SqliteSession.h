#ifndef EMULATOR_STORE_SQLITESESSION_H
#define EMULATOR_STORE_SQLITESESSION_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "emulator/store/CommitNotes.h"
#include "emulator/store/EventStore.h"
#include "emulator/store/FolderWatch.h"
#include "emulator/store/ForkLock.h"
#include "emulator/store/GatePassage.h"
#include "emulator/store/Leftover.h"
#include "emulator/store/SqliteOptions.h"
#include "emulator/store/StoreFiles.h"

namespace SQLite {
class Database;
}

namespace Orvane::Net::OvModelEventManager::Emulator {

class CheckedRows;
class SqlitePuts;
class SqliteRoom;
class SqliteTrim;
struct Member;
struct ServerRow;
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
// Events that all clients have got are removed by those who got them: a few in
// the transaction of the operation, the others after it, in transactions of
// their own (tidy). Between these anybody may write.
//
// Threads: one at a time. It must not cross a fork.
// THROWS: StoreError, and SQLite::Exception as it comes. Writing throws
// FilesReplaced if another file bears the name of one that is open; nothing was
// written then, and the session is of no more use.
class SqliteSession : public EventStore {
public:
    // Opens the file, and makes it a store if it is new.
    SqliteSession(const SqliteOptions& options, Deadline deadline);

    // Closes the file at once. The log stays as it is; one that has no name any
    // more is lost.
    ~SqliteSession() override;

    // If the log has lost its name, what is only in it goes into the file,
    // unless the gate stays shut for a while.
    void saveLostLog() noexcept;

    // Writes the log back into the file, if nobody else has the file open and
    // the gate is free soon. Files that are not the session's own stay as they
    // are. Then the session is of no more use.
    void tidyUp() noexcept;

    // Writes the log back into the file, if that can be done: for the room that
    // it takes.
    void cutLog();

    // How long the next call may wait for locks of other programs. The time at
    // the gate counts, so that those who queued there do not wait one after the
    // other.
    void waitUntil(Deadline limit);

    // Of the last operation, if nobody has taken it yet.
    std::optional<Leftover> takeLeftover() noexcept;

    // A step of some 20 milliseconds, and less while somebody waits at the
    // gate; also shortens the file. False if nothing is left to do.
    bool tidy(Leftover& leftover);

    // False when a transaction could not be ended; the session is then of no
    // more use.
    bool isAtRest() const noexcept;

    // The errno of SQLite's last system call that failed.
    int systemError() const noexcept;

    ClientList registerClient(const Identity& caller) override;
    ClientList unregisterClient(const Identity& caller) override;
    ClientList sharedClients(const Identity& caller) override;
    ClientList putEvents(const Identity& caller, std::string_view events,
                         std::string_view correlation = {}) override;
    std::optional<bool> hasEvents(const Identity& caller) override;
    std::optional<PendingEvents> getEvents(const Identity& caller) override;
    void consume(const Identity& caller, std::int64_t upto) override;

private:
    struct CachedList {
        std::int64_t epoch = 0;
        ClientList clients;
    };
    enum class Look { here, everywhere };  // for what others have left
    class Write;

    // `before`: the files as they were before they are opened.
    SqliteSession(const SqliteOptions& options, Deadline deadline,
                  const StoreFiles::Snapshot& before);

    void requireSameFiles();
    void requireSameFilesForReading();
    // Whether all names still stand for the files that are open. A log that has
    // lost its name is saved.
    bool keepsNames();
    bool hasLostLog(const StoreFiles::Snapshot& now) const noexcept;
    void saveLog(const StoreFiles::Snapshot& now);

    // What `work` makes of the caller, in a transaction; nothing if it is not
    // registered.
    template <typename Work>
    auto readFor(const Identity& caller, Work work);

    std::optional<Member> member(const Identity& caller,
                                 const CommitNotes::Noted& noted);
    ClientList clientsOf(const Member& member);
    void setBusyTimeout();
    void remember(const ServerRow& server, const ClientList& clients) noexcept;
    SqlitePuts& puts();
    bool isRepeated(std::int64_t server, const std::string& clientId,
                    std::string_view correlation, std::string_view events);
    void addEvent(Member& sender, std::string_view events);
    std::optional<Leftover> trim(std::int64_t server, std::int64_t freed,
                                 Look look);
    bool removeSome(Leftover& leftover);

    const StoreFiles files;
    Gate gate;
    const std::size_t portion;
    const bool dedupe;
    Deadline deadline;
    bool wrote = false;
    std::unique_ptr<SQLite::Database> database;
    // These end before the database.
    std::unique_ptr<SqliteStatements> statements;
    std::unique_ptr<CheckedRows> rows;
    std::unique_ptr<SqliteTrim> trimming;
    std::unique_ptr<SqliteRoom> room;       // null if there are no limits
    std::unique_ptr<SqlitePuts> putMemory;  // null until it is needed
    std::optional<Leftover> left;
    CommitNotes notes;
    StoreFiles::Snapshot opened;
    FolderWatch folder;
    std::map<std::int64_t, CachedList> lists;  // by server
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
