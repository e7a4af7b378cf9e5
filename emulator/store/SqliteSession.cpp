#include "emulator/store/SqliteSession.h"

#include <algorithm>
#include <new>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>

#include "emulator/store/GatePassage.h"
#include "emulator/store/SqliteFile.h"
#include "emulator/store/SqliteStatements.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// More than a put adds, so that a backlog shrinks; few enough that nobody
// waits long at the gate.
constexpr std::int64_t trimmedAtOnce = 32;

constexpr std::size_t cachedLists = 256;

}  // namespace

// The one way to write: gate first, then the write lock.
class SqliteSession::Write {
public:
    explicit Write(SqliteSession& session) : passage(session.gate) {
        session.setBusyTimeout();
        transaction.emplace(*session.database,
                            SQLite::TransactionBehavior::IMMEDIATE);
    }

    void commit() { transaction->commit(); }

private:
    GatePassage passage;
    std::optional<SQLite::Transaction> transaction;
};

SqliteSession::SqliteSession(const SqliteOptions& options)
    : gate(options.path + ".gate") {
    const GatePassage passage(gate);
    database = openSqliteFile(options);
    statements = std::make_unique<SqliteStatements>(*database);
}

// The last one to close writes the log back into the file; nobody may write
// meanwhile.
SqliteSession::~SqliteSession() {
    std::optional<GatePassage> passage;
    try {
        passage.emplace(gate);
    } catch (const StoreError&) {
        // The folder is gone; closing without the gate harms nobody.
    }
    statements.reset();
    database.reset();
}

void SqliteSession::waitUntil(std::chrono::steady_clock::time_point limit) {
    deadline = limit;
    setBusyTimeout();
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
    ClientList clients = clientsOf(before->server, before->epoch + 1);
    write.commit();
    remember(before->server, before->epoch + 1, clients);
    return clients;
}

ClientList SqliteSession::sharedClients(const Identity& caller) {
    SQLite::Transaction read(*database);
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
                  caller.clientId, events)
            .exec();
        SqliteRun(statements->takeNumber, sender->server).exec();
        stepOverOwn(*sender, caller.clientId, sender->next);
        trim(sender->server);
    }
    write.commit();
    remember(sender->server, sender->epoch, clients);
    return clients;
}

std::optional<PendingEvents> SqliteSession::getEvents(const Identity& caller) {
    SQLite::Transaction read(*database);
    const std::optional<Member> now = member(caller);
    if (!now) {
        return std::nullopt;
    }
    PendingEvents events;
    events.upto = now->next - 1;
    SqliteRun run(statements->pending, now->server, now->cursor, events.upto,
                  caller.clientId);
    while (run.step()) {
        events.text += run.bytes(0);
    }
    return events;
}

void SqliteSession::consume(const Identity& caller, std::int64_t upto) {
    Write write(*this);
    if (const std::optional<Member> now = member(caller)) {
        SqliteRun(statements->moveCursor, now->server, caller.clientId, upto)
            .exec();
        trim(now->server);
    }
    write.commit();
}

void SqliteSession::setBusyTimeout() {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    database->setBusyTimeout(
        static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
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
    SqliteRun(statements->trim, server, trimmedAtOnce).exec();
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
