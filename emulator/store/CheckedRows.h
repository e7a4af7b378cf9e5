#ifndef EMULATOR_STORE_CHECKEDROWS_H
#define EMULATOR_STORE_CHECKEDROWS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "emulator/store/EventStore.h"
#include "emulator/store/StoreRows.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

struct SqliteStatements;

// A registered client.
struct Member {
    Identity who;
    ServerRow server;
    std::int64_t cursor = 0;  // number of the last event that it has
};

// The rows of servers and clients, and the list of events of a client. Believes
// nothing that is not what was written: every row has a checksum, the numbers
// of a server's events have no gap, and what is kept in two places has to be
// the same in both.
//
// Of use inside a transaction. Threads: one at a time.
// THROWS: StoreError for damage, SQLite::Exception.
class CheckedRows {
public:
    // Both must outlive this object.
    CheckedRows(SqliteStatements& prepared, const std::string& storePath)
        : statements(prepared), path(storePath) {}

    std::optional<Member> member(const Identity& who);
    std::optional<ServerRow> server(const std::string& name);

    // Who is no member becomes one, or no longer is one.
    Member add(const Identity& who);
    void remove(Member& gone);

    // The clients of a server, ascending.
    ClientList clients(const Member& any);

    // The number of the next event is in use now, by one of so many bytes.
    void takeNumber(Member& sender, std::size_t bytes);

    // Never back, and never beyond the last event: the store that the number is
    // from may have been replaced by a younger one.
    void moveCursor(Member& client, std::int64_t upto);

    // Moves the cursor of a sender over what follows and is its own. Stops at
    // what is damaged.
    void stepOverOwn(Member& sender);

    // Whether pending gives a text, or finds that something is wrong.
    bool hasPending(const Member& client);

    // What is queued for a client: one portion.
    PendingEvents pending(const Member& client, std::size_t portion);

private:
    ServerRow addServer(const std::string& name);
    void write(const ServerRow& server, const std::string& name);
    void requireCursor(const Member& client);

    // How far from the cursor on all events are the client's own and whole.
    std::int64_t lastOwn(const Member& client);

    SqliteStatements& statements;
    const std::string& path;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
