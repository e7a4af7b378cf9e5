#include "emulator/store/CheckedRows.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "emulator/store/EventChecksum.h"
#include "emulator/store/SqliteStatements.h"
#include "emulator/store/StoreDamage.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// Small texts grow by doubling. A larger one gets the room of a whole portion
// at once: what it does not use is an address only, while each block that was
// outgrown could stay with the process.
constexpr std::size_t smallText = 1024 * 1024;

std::size_t roomFor(std::size_t total, std::size_t portion) {
    const std::size_t wanted =
        total <= smallText ? 2 * total : std::max(2 * total, portionBytes);
    return std::max(total, std::min(wanted, portion));
}

void append(std::string& text, std::string_view body, std::size_t portion) {
    const std::size_t total = text.size() + body.size();
    if (total > text.capacity()) {
        text.reserve(roomFor(total, portion));
    }
    text += body;
}

// Of a row of the statement `pending`.
std::int64_t originOf(std::int64_t server, const SqliteRun& run) {
    return originChecksum(
        {server, run.integer(0), run.bytes(1), run.integer(4), run.integer(5)});
}

}  // namespace

std::optional<Member> CheckedRows::member(const Identity& who) {
    SqliteRun run(statements.member, who.serverId, who.clientId);
    if (!run.step()) {
        return std::nullopt;
    }
    const Member found{who,
                       {run.integer(0), run.integer(1), run.integer(2),
                        run.integer(3), run.integer(4)},
                       run.integer(6)};
    if (run.integer(5) != found.server.checksum(who.serverId)) {
        throw damagedServer(path, who.serverId);
    }
    if (run.integer(7) !=
            clientChecksum(found.server.id, who.clientId, found.cursor) ||
        found.cursor >= found.server.next) {
        throw damagedClient(path, who);
    }
    return found;
}

Member CheckedRows::add(const Identity& who) {
    ServerRow now = server(who.serverId).value_or(ServerRow());
    if (now.id == 0) {
        now = addServer(who.serverId);
    }
    const std::int64_t cursor = now.next - 1;
    SqliteRun(statements.addClient, now.id, who.clientId, cursor,
              clientChecksum(now.id, who.clientId, cursor))
        .exec();
    ++now.epoch;
    now.members = plus(now.members, memberMark(who.clientId));
    write(now, who.serverId);
    return {who, now, cursor};
}

void CheckedRows::remove(Member& gone) {
    SqliteRun(statements.removeClient, gone.server.id, gone.who.clientId)
        .exec();
    ++gone.server.epoch;
    gone.server.members =
        minus(gone.server.members, memberMark(gone.who.clientId));
    write(gone.server, gone.who.serverId);
}

// A client that a search does not find, in a page whose rows are out of order,
// would be added a second time.
ClientList CheckedRows::clients(const Member& any) {
    auto list = std::make_shared<std::vector<std::string>>();
    std::int64_t marks = 0;
    SqliteRun run(statements.clients, any.server.id);
    while (run.step()) {
        const std::string_view name = run.bytes(0);
        if (!list->empty() && name <= list->back()) {
            throw damagedList(path, any.who.serverId);
        }
        list->emplace_back(name);
        marks = plus(marks, memberMark(list->back()));
    }
    if (marks != any.server.members) {
        throw damagedList(path, any.who.serverId);
    }
    return list;
}

void CheckedRows::takeNumber(Member& sender, std::size_t bytes) {
    ++sender.server.next;
    sender.server.bytes += static_cast<std::int64_t>(bytes);
    write(sender.server, sender.who.serverId);
}

void CheckedRows::moveCursor(Member& client, std::int64_t upto) {
    if (upto <= client.cursor || upto >= client.server.next) {
        return;
    }
    client.cursor = upto;
    SqliteRun(statements.moveCursor, client.server.id, client.who.clientId,
              upto, clientChecksum(client.server.id, client.who.clientId, upto))
        .exec();
}

// A client that only sends would otherwise keep its own events for ever.
void CheckedRows::stepOverOwn(Member& sender) {
    moveCursor(sender, lastOwn(sender));
}

bool CheckedRows::hasPending(const Member& client) {
    requireCursor(client);
    return lastOwn(client) + 1 != client.server.next;
}

PendingEvents CheckedRows::pending(const Member& client, std::size_t portion) {
    requireCursor(client);
    PendingEvents events;
    events.upto = client.cursor;
    SqliteRun run(statements.pending, client.server.id, client.cursor);
    while (run.step()) {
        const std::int64_t number = events.upto + 1;
        if (run.integer(0) != number || number >= client.server.next) {
            throw missingEvent(path, client.who.serverId, number);
        }
        const std::string_view sender = run.bytes(1);
        const std::int64_t origin = originOf(client.server.id, run);
        if (run.integer(2) != origin) {
            throw damagedEvent(path, number);
        }
        if (sender != client.who.clientId) {
            const std::string_view body = run.bytes(6);
            if (!events.text.empty() &&
                events.text.size() + body.size() > portion) {
                return events;
            }
            if (run.integer(3) != eventChecksum(origin, body)) {
                throw damagedEvent(path, number);
            }
            append(events.text, body, portion);
        }
        events.upto = number;
    }
    if (events.upto + 1 != client.server.next) {
        throw missingEvent(path, client.who.serverId, events.upto + 1);
    }
    return events;
}

std::optional<ServerRow> CheckedRows::server(const std::string& name) {
    SqliteRun run(statements.server, name);
    if (!run.step()) {
        return std::nullopt;
    }
    const ServerRow row{run.integer(0), run.integer(1), run.integer(2),
                        run.integer(3), run.integer(4)};
    if (run.integer(5) != row.checksum(name)) {
        throw damagedServer(path, name);
    }
    return row;
}

// An index that has lost the name, or a table that has lost its last rows,
// would give the queues of one server to another.
ServerRow CheckedRows::addServer(const std::string& name) {
    ServerRow row;
    {
        SqliteRun run(statements.newServer, name);
        run.step();
        if (run.integer(1) != 0) {
            throw damagedServer(path, name);
        }
        row.id = run.integer(0);
    }
    SqliteRun(statements.addServer, row.id, name).exec();
    return row;
}

void CheckedRows::write(const ServerRow& server, const std::string& name) {
    SqliteRun(statements.writeServer, server.id, server.next, server.epoch,
              server.bytes, server.members, server.checksum(name))
        .exec();
}

std::int64_t CheckedRows::lastOwn(const Member& client) {
    const std::int64_t server = client.server.id;
    const std::string& name = client.who.clientId;
    std::int64_t last = client.cursor;
    SqliteRun run(statements.pending, server, last);
    while (run.step() && run.integer(0) == last + 1 && run.bytes(1) == name &&
           run.integer(2) == originOf(server, run)) {
        ++last;
    }
    return last;
}

// A page of the table may be as it was earlier; that of the index then is not.
void CheckedRows::requireCursor(const Member& client) {
    SqliteRun run(statements.cursorInIndex, client.server.id, client.cursor,
                  client.who.clientId);
    if (!run.step()) {
        throw damagedClient(path, client.who);
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
