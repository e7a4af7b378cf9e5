#include "emulator/store/SqliteSession.h"

#include <chrono>
#include <filesystem>
#include <new>
#include <string>
#include <thread>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include "emulator/store/CheckedRows.h"
#include "emulator/store/ClientListLimit.h"
#include "emulator/store/EventChecksum.h"
#include "emulator/store/LogFile.h"
#include "emulator/store/SqliteFile.h"
#include "emulator/store/SqlitePuts.h"
#include "emulator/store/SqliteRoom.h"
#include "emulator/store/SqliteStatements.h"
#include "emulator/store/SqliteTransaction.h"
#include "emulator/store/SqliteTrim.h"
#include "emulator/store/StoreDamage.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// More than a put adds, so that a backlog shrinks; few enough that a put takes
// no longer for it.
constexpr SqliteTrim::Bounds trimmedByAPut{8, 64 * 1024, false};

// What other writes remove in their own transaction, and what tidying removes
// between two looks at the clock.
constexpr SqliteTrim::Bounds trimmedAtOnce{250, 8 * 1024 * 1024, true};

// So that nobody waits long at the gate.
constexpr std::chrono::milliseconds tidyStep{20};

// Whoever frees events also removes as many that others have left, so that what
// a process that was killed has left goes soon.
constexpr std::int64_t tidiedForOthers = 20000;

constexpr std::size_t cachedLists = 256;

// How long a session that ends with something to save waits at the gate.
constexpr std::chrono::seconds endLimit{1};

}  // namespace

// The one way to write: gate first, then the write lock.
class SqliteSession::Write {
public:
    explicit Write(SqliteSession& session)
        : wrote(session.wrote), passage(session.gate, session.deadline) {
        session.requireSameFiles();
        session.setBusyTimeout();
        transaction.emplace(session.statements->transaction,
                            SqliteTransaction::Kind::write);
    }

    void commit() {
        transaction->commit();
        wrote = true;
    }

    int gateFile() const { return passage.descriptor(); }

private:
    bool& wrote;
    GatePassage passage;
    std::optional<SqliteTransaction> transaction;
};

SqliteSession::SqliteSession(const SqliteOptions& options, Deadline limit)
    : SqliteSession(options, limit, StoreFiles(options).snapshot()) {}

SqliteSession::SqliteSession(const SqliteOptions& options, Deadline limit,
                             const StoreFiles::Snapshot& before)
    : files(options),
      gate(files.gate(), files.fileMode()),
      portion(options.portion),
      dedupe(options.dedupe),
      deadline(limit),
      database(openSqliteFile(options, limit)),
      statements(std::make_unique<SqliteStatements>(*database)),
      rows(std::make_unique<CheckedRows>(*statements, files.database())),
      trimming(std::make_unique<SqliteTrim>(*database)),
      room(options.limits.any() ? std::make_unique<SqliteRoom>(
                                      *database, options.path, options.limits)
                                : nullptr),
      notes(gate.path(), options.synchronous),
      opened(files.snapshot()),
      folder(std::filesystem::path(files.database()).parent_path()) {
    // A file may lose its name while it is being opened; the first write then
    // has to notice.
    if (before.database != StoreFiles::Snapshot::File()) {
        opened.database = before.database;
    }
    if (before.log != StoreFiles::Snapshot::File()) {
        opened.log = before.log;
    }
}

SqliteSession::~SqliteSession() = default;

void SqliteSession::saveLostLog() noexcept {
    try {
        if (hasLostLog(files.snapshot())) {
            deadline = std::chrono::steady_clock::now() + endLimit;
            const GatePassage passage(gate.path(), deadline, files.fileMode());
            keepsNames();
        }
    } catch (const std::exception&) {
        // Whoever else has the log open may still save it.
    }
}

// The last one to close writes the log back into the file; nobody may write
// meanwhile. A log that is left behind is a matter of room only.
//
// SQLite then removes the log by its name, which may be that of others by now.
void SqliteSession::tidyUp() noexcept {
    try {
        const StoreFiles::Snapshot now = files.snapshot();
        if (now.database != opened.database) {
            return;
        }
        const auto limit =
            wrote || now != opened ? endLimit : std::chrono::seconds(0);
        deadline = std::chrono::steady_clock::now() + limit;
        const GatePassage passage(gate.path(), deadline, files.fileMode());
        if (!keepsNames()) {
            return;
        }
        putMemory.reset();
        room.reset();
        trimming.reset();
        rows.reset();
        statements.reset();
        keepLogAtClose(*database, false);
        database.reset();
    } catch (const std::exception&) {
        // The log stays.
    }
}

void SqliteSession::cutLog() {
    Emulator::cutLog(*database, files, 0, deadline);
}

void SqliteSession::waitUntil(Deadline limit) {
    deadline = limit;
    setBusyTimeout();
}

bool SqliteSession::isAtRest() const noexcept {
    return ::sqlite3_get_autocommit(database->getHandle()) != 0;
}

int SqliteSession::systemError() const noexcept {
    sqlite3* const handle = database->getHandle();
    int error = ::sqlite3_system_errno(handle);
    if (error != 0) {
        return error;
    }
    // The rollback after a failed commit makes it forget, but not the files.
    sqlite3_file* log = nullptr;
    ::sqlite3_file_control(handle, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
    if (log && log->pMethods) {
        log->pMethods->xFileControl(log, SQLITE_FCNTL_LAST_ERRNO, &error);
    }
    if (error == 0) {
        ::sqlite3_file_control(handle, "main", SQLITE_FCNTL_LAST_ERRNO, &error);
    }
    return error;
}

ClientList SqliteSession::registerClient(const Identity& caller) {
    Write write(*this);
    std::optional<Member> now = member(caller, notes.of(caller));
    const bool isNew = !now;
    std::optional<Leftover> after;
    if (isNew) {
        now = rows->add(caller);
        after = trim(now->server.id, 0, Look::everywhere);
    }
    ClientList clients = clientsOf(*now);
    if (isNew) {
        requireReadable(*clients);
    }
    write.commit();
    left = after;
    if (isNew) {
        notes.noteServer(write.gateFile(), caller.serverId, now->server);
    }
    remember(now->server, clients);
    return clients;
}

ClientList SqliteSession::unregisterClient(const Identity& caller) {
    Write write(*this);
    std::optional<Member> gone = member(caller, notes.of(caller));
    if (!gone) {
        return nullptr;
    }
    rows->remove(*gone);
    puts().forget(gone->server.id, caller.clientId);
    ClientList clients = clientsOf(*gone);
    const std::optional<Leftover> after =
        trim(gone->server.id, gone->server.next - 1 - gone->cursor,
             Look::everywhere);
    write.commit();
    left = after;
    notes.noteServer(write.gateFile(), caller.serverId, gone->server);
    remember(gone->server, clients);
    return clients;
}

ClientList SqliteSession::sharedClients(const Identity& caller) {
    requireSameFilesForReading();
    const CommitNotes::Noted noted = notes.of(caller);
    const SqliteTransaction read(statements->transaction,
                                 SqliteTransaction::Kind::read);
    const std::optional<Member> now = member(caller, noted);
    if (!now) {
        return nullptr;
    }
    ClientList clients = clientsOf(*now);
    remember(now->server, clients);
    return clients;
}

ClientList SqliteSession::putEvents(const Identity& caller,
                                    std::string_view events,
                                    std::string_view correlation) {
    Write write(*this);
    std::optional<Member> sender = member(caller, notes.of(caller));
    if (!sender) {
        return nullptr;
    }
    ClientList clients = clientsOf(*sender);
    const bool puts =
        !events.empty() &&
        !isRepeated(sender->server.id, caller.clientId, correlation, events) &&
        clients->size() > 1;
    if (puts) {
        addEvent(*sender, events);
        trimming->remove(sender->server.id, trimmedByAPut);
    }
    write.commit();
    if (puts) {
        notes.noteServer(write.gateFile(), caller.serverId, sender->server);
    }
    remember(sender->server, clients);
    return clients;
}

// What was read is of no use if it came from files that others have left.
template <typename Work>
auto SqliteSession::readFor(const Identity& caller, Work work) {
    std::optional<decltype(work(std::declval<const Member&>()))> result;
    {
        const CommitNotes::Noted noted = notes.of(caller);
        const SqliteTransaction read(statements->transaction,
                                     SqliteTransaction::Kind::read);
        if (const std::optional<Member> now = member(caller, noted)) {
            result = work(*now);
        }
    }
    requireSameFilesForReading();
    return result;
}

std::optional<bool> SqliteSession::hasEvents(const Identity& caller) {
    return readFor(caller,
                   [this](const Member& now) { return rows->hasPending(now); });
}

std::optional<PendingEvents> SqliteSession::getEvents(const Identity& caller) {
    return readFor(caller, [this](const Member& now) {
        return rows->pending(now, portion);
    });
}

void SqliteSession::consume(const Identity& caller, std::int64_t upto) {
    Write write(*this);
    std::optional<Leftover> after;
    std::optional<Member> now = member(caller, notes.of(caller));
    if (now) {
        const std::int64_t before = now->cursor;
        rows->moveCursor(*now, upto);
        after = trim(now->server.id, now->cursor - before, Look::here);
    }
    write.commit();
    left = after;
    if (now) {
        notes.noteClient(write.gateFile(), caller, now->cursor);
    }
}

std::optional<Leftover> SqliteSession::takeLeftover() noexcept {
    return std::exchange(left, std::nullopt);
}

bool SqliteSession::tidy(Leftover& leftover) {
    std::optional<Write> write(std::in_place, *this);
    const auto end = std::chrono::steady_clock::now() + tidyStep;
    const auto mayGoOn = [&] {
        return std::chrono::steady_clock::now() < end && !gate.hasWaiters();
    };
    bool more = leftover.events > 0;
    if (more) {
        do {
            more = removeSome(leftover);
        } while (more && mayGoOn());
    }
    const bool shorten = !more && trimming->hasManyFreePages();
    if (shorten) {
        more = trimming->returnPages(mayGoOn);
    }
    write->commit();
    write.reset();
    if (shorten && !more) {
        cutLog();  // and with it the file
    }
    return more;
}

bool SqliteSession::removeSome(Leftover& leftover) {
    const auto removed = trimming->remove(leftover.server, trimmedAtOnce);
    leftover.events -= removed.events;
    if (removed.all) {
        const std::optional<std::int64_t> next = trimming->deserted();
        if (!next) {
            leftover.events = 0;
            return false;
        }
        leftover.server = *next;
    }
    return leftover.events > 0;
}

void SqliteSession::requireSameFiles() {
    if (folder.isUnchanged()) {
        return;
    }
    if (keepsNames() && gate.hasItsName()) {
        folder.accept();
        return;
    }
    throw FilesReplaced();
}

// Inside the gate.
bool SqliteSession::keepsNames() {
    const StoreFiles::Snapshot now = files.snapshot();
    if (hasLostLog(now)) {
        saveLog(now);
    }
    return now == opened;
}

bool SqliteSession::hasLostLog(const StoreFiles::Snapshot& now) const noexcept {
    return now.database == opened.database && now.log != opened.log;
}

// What is only in a log that has lost its name goes into the database. Whoever
// notices first does so for all, and takes the index away, too: the others go
// on with both until they notice, and nobody has one of them with a new log.
void SqliteSession::saveLog(const StoreFiles::Snapshot& now) {
    const bool isFirst = now.index == opened.index;
    const bool isGone = now.index == StoreFiles::Snapshot::File();
    if (!(isFirst || isGone) || !isLogOfIndex(*database)) {
        return;
    }
    // A read takes a moment, but its process may be stopped.
    while (!writeBackLog(*database)) {
        if (std::chrono::steady_clock::now() >= deadline) {
            throw StoreError(
                "The log '" + files.log() +
                "' of the event store was removed or replaced, and another "
                "process has been reading what was in it for too long. Let "
                "that process go on or end it, then repeat the call.");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (isFirst) {
        files.removeLogAndIndex();
    }
}

// As before a write, outside of any transaction.
void SqliteSession::requireSameFilesForReading() {
    if (folder.isUnchanged()) {
        return;
    }
    if (files.snapshot() == opened) {
        // Whether the gate is the same matters to the next write.
        if (gate.hasItsName()) {
            folder.accept();
        }
        return;
    }
    const GatePassage passage(gate, deadline);
    requireSameFiles();
}

void SqliteSession::setBusyTimeout() {
    database->setBusyTimeout(millisecondsUntil(deadline));
}

// What is noted was read before the transaction began, or inside the gate.
std::optional<Member> SqliteSession::member(const Identity& caller,
                                            const CommitNotes::Noted& noted) {
    std::optional<Member> found = rows->member(caller);
    if (noted.server) {
        const std::optional<ServerRow> server =
            found ? found->server : rows->server(caller.serverId);
        if (!server || CommitNotes::progress(*server) < *noted.server) {
            throw lostCommits(files.database(), caller.serverId);
        }
    }
    if (noted.client && found && found->cursor < *noted.client) {
        throw lostCommits(files.database(), caller.serverId);
    }
    if (found) {
        notes.accept(caller);
    }
    return found;
}

ClientList SqliteSession::clientsOf(const Member& member) {
    const auto cached = lists.find(member.server.id);
    if (cached != lists.end() && cached->second.epoch == member.server.epoch) {
        return cached->second.clients;
    }
    return rows->clients(member);
}

// Only for what is committed: a later commit would bear the same epoch as one
// that was rolled back.
void SqliteSession::remember(const ServerRow& server,
                             const ClientList& clients) noexcept {
    if (lists.size() >= cachedLists) {
        lists.clear();
    }
    try {
        lists[server.id] = CachedList{server.epoch, clients};
    } catch (const std::bad_alloc&) {
        // What was done stays done; the list is read again next time.
    }
}

void SqliteSession::addEvent(Member& sender, std::string_view events) {
    const ServerRow& server = sender.server;
    if (room) {
        rows->stepOverOwn(sender);
        room->require(sender, events.size());
    }
    const EventOrigin origin{server.id, server.next, sender.who.clientId,
                             server.bytes, secondsNow()};
    const std::int64_t checksum = originChecksum(origin);
    SqliteRun(statements->addEvent, origin.server, origin.number, origin.sender,
              checksum, eventChecksum(checksum, events), origin.start,
              origin.time, events)
        .exec();
    rows->takeNumber(sender, events.size());
    rows->stepOverOwn(sender);
}

SqlitePuts& SqliteSession::puts() {
    if (!putMemory) {
        putMemory = std::make_unique<SqlitePuts>(*database);
    }
    return *putMemory;
}

// If it is not, it is one that can be repeated from now on: also where nobody
// receives it, since the client is told that it was put.
bool SqliteSession::isRepeated(std::int64_t server, const std::string& clientId,
                               std::string_view correlation,
                               std::string_view events) {
    return dedupe && !correlation.empty() &&
           !puts().add(server, clientId, correlation, events);
}

// Few events are not worth a transaction of their own.
std::optional<Leftover> SqliteSession::trim(std::int64_t server,
                                            std::int64_t freed, Look look) {
    const auto removed = trimming->remove(server, trimmedAtOnce);
    if (removed.all && !trimming->hasManyFreePages() &&
        (look == Look::here || !trimming->deserted())) {
        return std::nullopt;
    }
    return Leftover{server, std::max<std::int64_t>(freed, 0) + tidiedForOthers};
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
