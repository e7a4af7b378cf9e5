#include "emulator/store/SqliteSession.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <new>
#include <string>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include "emulator/store/EventChecksum.h"
#include "emulator/store/GatePassage.h"
#include "emulator/store/SqliteFile.h"
#include "emulator/store/SqliteStatements.h"
#include "emulator/store/SqliteTransaction.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// More than a put adds, so that a backlog shrinks; few enough that a put takes
// no longer for it.
constexpr std::int64_t trimmedByAPut = 32;

// What other writes remove: some hundred events, and more while the time lasts,
// so that nobody waits long at the gate.
constexpr std::int64_t trimmedAtOnce = 250;
constexpr std::chrono::milliseconds trimLimit{20};

// Whoever consumes more than this at once leaves the rest to those who come
// later: a large get has taken its time already.
constexpr std::int64_t consumedAtOnce = 1000;

constexpr std::size_t cachedLists = 256;

// How long the end of a session that wrote may wait at the gate.
constexpr std::chrono::seconds tidyLimit{1};

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

private:
    bool& wrote;
    GatePassage passage;
    std::optional<SqliteTransaction> transaction;
};

SqliteSession::SqliteSession(const SqliteOptions& options, Deadline limit)
    : files(options),
      gate(files.gate()),
      portion(options.portion),
      deadline(limit),
      database(openSqliteFile(options, limit)),
      statements(std::make_unique<SqliteStatements>(*database)),
      opened(files.snapshot()),
      folder(std::filesystem::path(files.database()).parent_path()) {}

SqliteSession::~SqliteSession() = default;

// The last one to close writes the log back into the file; nobody may write
// meanwhile. A log that is left behind is a matter of room only.
void SqliteSession::tidyUp() noexcept {
    try {
        const auto limit = wrote ? tidyLimit : std::chrono::seconds(0);
        const GatePassage passage(gate,
                                  std::chrono::steady_clock::now() + limit);
        statements.reset();
        keepLogAtClose(*database, false);
        database.reset();
    } catch (const std::exception&) {
        // The log stays.
    }
}

void SqliteSession::cutLog() {
    Emulator::cutLog(*database, files.database(), 0, deadline);
}

void SqliteSession::waitUntil(Deadline limit) {
    deadline = limit;
    setBusyTimeout();
}

bool SqliteSession::isAtRest() const noexcept {
    return ::sqlite3_get_autocommit(database->getHandle()) != 0;
}

int SqliteSession::systemError() const noexcept {
    return ::sqlite3_system_errno(database->getHandle());
}

ClientList SqliteSession::registerClient(const Identity& caller) {
    Write write(*this);
    std::optional<Member> now = member(caller);
    if (!now) {
        SqliteRun(statements->addServer, caller.serverId).exec();
        SqliteRun(statements->addClient, caller.serverId, caller.clientId)
            .exec();
        SqliteRun(statements->raiseEpoch, caller.serverId).exec();
        now = member(caller);
        trimDeserted();
    }
    ClientList clients = clientsOf(now->server, now->epoch);
    write.commit();
    remember(now->server, now->epoch, clients);
    return clients;
}

ClientList SqliteSession::unregisterClient(const Identity& caller) {
    Write write(*this);
    const std::optional<Member> before = member(caller);
    if (!before) {
        return nullptr;
    }
    SqliteRun(statements->removeClient, before->server, caller.clientId).exec();
    SqliteRun(statements->raiseEpoch, caller.serverId).exec();
    trim(before->server);
    trimDeserted();
    ClientList clients = clientsOf(before->server, before->epoch + 1);
    write.commit();
    remember(before->server, before->epoch + 1, clients);
    return clients;
}

ClientList SqliteSession::sharedClients(const Identity& caller) {
    const SqliteTransaction read(statements->transaction,
                                 SqliteTransaction::Kind::read);
    const std::optional<Member> now = member(caller);
    if (!now) {
        return nullptr;
    }
    ClientList clients = clientsOf(now->server, now->epoch);
    remember(now->server, now->epoch, clients);
    return clients;
}

ClientList SqliteSession::putEvents(const Identity& caller,
                                    std::string_view events) {
    Write write(*this);
    const std::optional<Member> sender = member(caller);
    if (!sender) {
        return nullptr;
    }
    ClientList clients = clientsOf(sender->server, sender->epoch);
    if (!events.empty() && clients->size() > 1) {
        SqliteRun(statements->addEvent, sender->server, sender->next,
                  caller.clientId,
                  eventChecksum(sender->server, sender->next, events), events)
            .exec();
        SqliteRun(statements->takeNumber, sender->server).exec();
        stepOverOwn(*sender, caller.clientId, sender->next);
        SqliteRun(statements->trim, sender->server, trimmedByAPut).exec();
    }
    write.commit();
    remember(sender->server, sender->epoch, clients);
    return clients;
}

std::optional<PendingEvents> SqliteSession::getEvents(const Identity& caller) {
    const SqliteTransaction read(statements->transaction,
                                 SqliteTransaction::Kind::read);
    const std::optional<Member> now = member(caller);
    if (!now) {
        return std::nullopt;
    }
    PendingEvents events;
    events.upto = now->next - 1;
    SqliteRun run(statements->pending, now->server, now->cursor, events.upto,
                  caller.clientId);
    std::int64_t last = now->cursor;
    while (run.step()) {
        const std::string_view body = run.bytes(0);
        const std::size_t total = events.text.size() + body.size();
        if (!events.text.empty() && total > portion) {
            events.upto = last;
            break;
        }
        const std::int64_t number = run.integer(1);
        if (eventChecksum(now->server, number, body) != run.integer(2)) {
            throw StoreError(
                "Event " + std::to_string(number) + " of the event store '" +
                files.database() +
                "' is not what was put: the file is damaged. Check the disk. "
                "To go on without what is queued, unregister the client and "
                "register it again.");
        }
        // Doubling could take twice the portion.
        if (total > events.text.capacity()) {
            events.text.reserve(std::max(total, std::min(2 * total, portion)));
        }
        events.text += body;
        last = number;
    }
    return events;
}

void SqliteSession::consume(const Identity& caller, std::int64_t upto) {
    Write write(*this);
    if (const std::optional<Member> now = member(caller)) {
        SqliteRun(statements->moveCursor, now->server, caller.clientId, upto)
            .exec();
        if (upto - now->cursor > consumedAtOnce) {
            SqliteRun(statements->trim, now->server, trimmedAtOnce).exec();
        } else {
            trim(now->server);
        }
    }
    write.commit();
}

// What is only in a log that has lost its name goes into the database, as long
// as that has not.
void SqliteSession::requireSameFiles() {
    if (folder.isUnchanged()) {
        return;
    }
    const StoreFiles::Snapshot now = files.snapshot();
    if (now == opened) {
        folder.accept();
        return;
    }
    if (now.database == opened.database) {
        database->setBusyTimeout(0);
        database->tryExec("PRAGMA wal_checkpoint(PASSIVE)");
    }
    throw FilesReplaced();
}

void SqliteSession::setBusyTimeout() {
    database->setBusyTimeout(millisecondsUntil(deadline));
}

std::optional<SqliteSession::Member> SqliteSession::member(
    const Identity& caller) {
    SqliteRun run(statements->member, caller.serverId, caller.clientId);
    if (!run.step()) {
        return std::nullopt;
    }
    return Member{run.integer(0), run.integer(1), run.integer(2),
                  run.integer(3)};
}

ClientList SqliteSession::clientsOf(std::int64_t server, std::int64_t epoch) {
    const auto cached = lists.find(server);
    if (cached != lists.end() && cached->second.epoch == epoch) {
        return cached->second.clients;
    }
    auto clients = std::make_shared<std::vector<std::string>>();
    SqliteRun run(statements->clients, server);
    while (run.step()) {
        clients->emplace_back(run.bytes(0));
    }
    return clients;
}

// Only for what is committed: a later commit would bear the same epoch as one
// that was rolled back.
void SqliteSession::remember(std::int64_t server, std::int64_t epoch,
                             const ClientList& clients) noexcept {
    if (lists.size() >= cachedLists) {
        lists.clear();
    }
    try {
        lists[server] = CachedList{epoch, clients};
    } catch (const std::bad_alloc&) {
        // What was done stays done; the list is read again next time.
    }
}

// A client that only sends would otherwise keep its own events for ever.
void SqliteSession::stepOverOwn(const Member& sender,
                                const std::string& clientId,
                                std::int64_t number) {
    SqliteRun first(statements->firstOfOthers, sender.server, sender.cursor,
                    clientId);
    const std::int64_t reached = first.step() ? first.integer(0) - 1 : number;
    SqliteRun(statements->moveCursor, sender.server, clientId, reached).exec();
}

void SqliteSession::trim(std::int64_t server) {
    const auto end = std::chrono::steady_clock::now() + trimLimit;
    int removed = 0;
    do {
        SqliteRun run(statements->trim, server, trimmedAtOnce);
        removed = run.exec();
    } while (removed == trimmedAtOnce &&
             std::chrono::steady_clock::now() < end);
}

// What a server's last client left behind and its own writes did not remove.
void SqliteSession::trimDeserted() {
    std::optional<std::int64_t> server;
    {
        SqliteRun run(statements->deserted);
        if (run.step()) {
            server = run.integer(0);
        }
    }
    if (server) {
        trim(*server);
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
