#include "emulator/store/StoreVerification.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <string_view>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include "emulator/manager/ShownText.h"
#include "emulator/store/EventChecksum.h"
#include "emulator/store/SqliteFailure.h"
#include "emulator/store/SqliteFile.h"
#include "emulator/store/SqliteStatements.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/StoreRows.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

struct EnoughFindings {};

struct Server {
    ServerRow row;
    std::string name;
    std::int64_t clients = 0;
    std::int64_t lowestCursor = 0;  // if there are clients

    std::string shownName() const { return "the server " + shown(name); }
};

// Neighbours of a number that may be any, since it was not written here.
std::int64_t before(std::int64_t number) {
    return std::max(number, std::numeric_limits<std::int64_t>::min() + 1) - 1;
}

std::int64_t after(std::int64_t number) {
    return std::min(number, std::numeric_limits<std::int64_t>::max() - 1) + 1;
}

std::string events(std::int64_t first, std::int64_t last) {
    if (first == last) {
        return "Event " + std::to_string(first);
    }
    return "Events " + std::to_string(first) + " to " + std::to_string(last);
}

class Verification {
public:
    Verification(SQLite::Database& store, std::string storePath)
        : database(store), path(std::move(storePath)) {}

    std::vector<std::string> run() {
        try {
            examine("The store", [this] { checkFile(); });
            examine("The list of servers", [this] { checkServers(); });
            examine("What belongs to no server", [this] { checkStrays(); });
        } catch (const EnoughFindings&) {
            findings.push_back("There is more; these are the first " +
                               std::to_string(mostFindings) + " findings.");
        }
        return std::move(findings);
    }

private:
    void add(const std::string& finding) {
        if (findings.size() == mostFindings) {
            throw EnoughFindings();
        }
        findings.push_back(finding);
    }

    // What cannot be read for damage is a finding, and the rest is looked at.
    template <typename Work>
    void examine(const std::string& what, Work work) {
        try {
            work();
        } catch (const SQLite::Exception& error) {
            if (error.getErrorCode() != SQLITE_CORRUPT) {
                throw;
            }
            add(what + " cannot be read to the end: " + error.what() + ".");
        }
    }

    void checkFile() {
        try {
            requireStore(database, path);
        } catch (const StoreError& error) {
            add(error.what());
        }
        SQLite::Statement check(
            database,
            "PRAGMA integrity_check(" + std::to_string(mostFindings) + ")");
        SqliteRun run(check);
        while (run.step()) {
            if (const std::string_view text = run.bytes(0); text != "ok") {
                add("SQLite finds: " + std::string(text) + ".");
            }
        }
    }

    // Not by the index, which may have lost a name.
    void checkServers() {
        SQLite::Statement servers(
            database,
            "SELECT id, next, epoch, bytes, members, checksum, name "
            "FROM server NOT INDEXED ORDER BY id");
        SqliteRun run(servers);
        while (run.step()) {
            Server server{{run.integer(0), run.integer(1), run.integer(2),
                           run.integer(3), run.integer(4)},
                          std::string(run.bytes(6))};
            if (run.integer(5) != server.row.checksum(server.name)) {
                add("What is kept of " + server.shownName() +
                    " is not what was written.");
            }
            examine("The clients of " + server.shownName(),
                    [&] { checkClients(server); });
            examine("The events of " + server.shownName(),
                    [&] { checkEvents(server); });
        }
    }

    void checkClients(Server& server) {
        SQLite::Statement clients(database,
                                  "SELECT name, cursor, checksum FROM client "
                                  "WHERE server = ?1 ORDER BY name");
        SqliteRun run(clients, server.row.id);
        std::int64_t members = 0;
        while (run.step()) {
            const std::string name(run.bytes(0));
            const std::int64_t cursor = run.integer(1);
            const std::string who =
                "the client " + shown(name) + " of " + server.shownName();
            if (run.integer(2) != clientChecksum(server.row.id, name, cursor)) {
                add("What is kept of " + who + " is not what was written.");
            }
            if (cursor < 0 || cursor >= server.row.next) {
                add("The cursor of " + who + " is at event " +
                    std::to_string(cursor) + ", but the last one is event " +
                    std::to_string(before(server.row.next)) + ".");
            }
            members = plus(members, memberMark(name));
            server.lowestCursor = server.clients == 0
                                      ? cursor
                                      : std::min(cursor, server.lowestCursor);
            ++server.clients;
        }
        if (members != server.row.members) {
            add("The clients of " + server.shownName() +
                " are not those that registered: one is missing, or there is "
                "one too many.");
        }
    }

    // Of a server with clients, the events begin at the latest behind the one
    // that all of them have, and go on to the last one.
    void checkEvents(const Server& server) {
        SQLite::Statement all(
            database,
            "SELECT number, sender, origin, checksum, start, time, body "
            "FROM event "
            "WHERE server = ?1 ORDER BY number");
        SqliteRun run(all, server.row.id);
        std::int64_t count = 0;
        std::int64_t expected = after(server.lowestCursor);
        while (run.step()) {
            const std::int64_t number = run.integer(0);
            checkEvent(server, number, run);
            if (count > 0 || server.clients > 0) {
                checkGap(server, expected, number);
            }
            expected = std::max(after(number), expected);
            ++count;
        }
        if (server.clients > 0) {
            checkGap(server, expected, server.row.next);
        } else if (count > 0) {
            add("There are no clients of " + server.shownName() +
                ", but it still keeps " + std::to_string(count) +
                (count == 1 ? " event" : " events") +
                "; the next writes remove them.");
        }
    }

    void checkEvent(const Server& server, std::int64_t number,
                    const SqliteRun& run) {
        const std::string_view sender = run.bytes(1);
        const std::int64_t origin = originChecksum(
            {server.row.id, number, sender, run.integer(4), run.integer(5)});
        if (run.integer(2) != origin ||
            run.integer(3) != eventChecksum(origin, run.bytes(6))) {
            add("Event " + std::to_string(number) + " of " +
                server.shownName() + ", put by " + shown(sender) +
                ", is not what was put.");
        }
        if (number < 1 || number >= server.row.next) {
            add("Event " + std::to_string(number) + " of " +
                server.shownName() + ", put by " + shown(sender) +
                ", cannot be: the last one is event " +
                std::to_string(before(server.row.next)) + ".");
        }
    }

    void checkGap(const Server& server, std::int64_t expected,
                  std::int64_t number) {
        if (expected < number) {
            add(events(expected, number - 1) + " of " + server.shownName() +
                (expected + 1 == number ? " is" : " are") + " missing.");
        }
    }

    void checkStrays() {
        for (const char* table : {"client", "event"}) {
            SQLite::Statement strays(
                database, "SELECT server, count(*) FROM " + std::string(table) +
                              " WHERE server NOT IN (SELECT id FROM server) "
                              "GROUP BY server");
            SqliteRun run(strays);
            while (run.step()) {
                add("Rows of the table " + std::string(table) +
                    " that belong to a server " +
                    std::to_string(run.integer(0)) + ", which is not there: " +
                    std::to_string(run.integer(1)) + ".");
            }
        }
    }

    SQLite::Database& database;
    const std::string path;
    std::vector<std::string> findings;
};

}  // namespace

std::vector<std::string> verifyStore(const SqliteOptions& options) {
    const Deadline limit =
        std::chrono::steady_clock::now() +
        std::chrono::milliseconds(options.busyTimeoutMilliseconds);
    std::unique_ptr<SQLite::Database> database;
    try {
        database = openSqliteFileToRead(options, limit);
        // Everything as it is at one moment.
        const SQLite::Transaction moment(*database);
        return Verification(*database, options.path).run();
    } catch (const SQLite::Exception& error) {
        throwSqliteFailure(
            error, options.path,
            database ? ::sqlite3_system_errno(database->getHandle()) : 0);
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
