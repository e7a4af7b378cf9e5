#ifndef EMULATOR_STORE_SQLITETRIM_H
#define EMULATOR_STORE_SQLITETRIM_H

#include <cstdint>
#include <functional>
#include <optional>

#include <SQLiteCpp/SQLiteCpp.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

// Takes out of a store what nobody waits for any more, and the room that it
// took out of the file. All of it inside a write transaction of the caller.
//
// THROWS: SQLite::Exception.
class SqliteTrim {
public:
    struct Bounds {
        std::int64_t events = 0;
        std::int64_t bytes = 0;    // of all of them together
        bool evenIfLarge = false;  // one event, even if it is larger
    };
    struct Removed {
        std::int64_t events = 0;
        bool all = false;  // nothing is left to remove
    };

    explicit SqliteTrim(SQLite::Database& database);

    // Removes the oldest events of a server that all its clients have got, or
    // that have no client any more.
    Removed remove(std::int64_t server, const Bounds& bounds);

    // A server that has events but no clients.
    std::optional<std::int64_t> deserted();

    // The file has many pages that are not in use, and they are much of it.
    bool hasManyFreePages();

    // Makes the file shorter while it has, as long as `mayGoOn` says so; true
    // if there is more to return. The file itself is cut when the log is next
    // written back.
    bool returnPages(const std::function<bool()>& mayGoOn);

private:
    struct Pages {
        std::int64_t free = 0;
        std::int64_t all = 0;
        bool areManyFree() const;
    };
    Pages pages();

    SQLite::Statement oldest;
    SQLite::Statement removal;
    SQLite::Statement withoutClients;
    SQLite::Statement freePages;
    SQLite::Statement allPages;
    SQLite::Statement vacuum;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
