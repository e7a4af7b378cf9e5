#include "emulator/store/SqliteTrim.h"

#include "emulator/store/SqliteStatements.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// Less is left to the events to come: 4 MiB of the usual pages.
constexpr std::int64_t fewPages = 1000;
constexpr std::int64_t usedShare = 4;  // a quarter may be free

constexpr int pagesAtOnce = 32;  // between two looks at the clock

}  // namespace

SqliteTrim::SqliteTrim(SQLite::Database& database)
    : oldest(database,
             "SELECT number, length(body) FROM event "
             "WHERE server = ?1 AND number <= ifnull("
             "(SELECT min(cursor) FROM client WHERE server = ?1), "
             "9223372036854775807) ORDER BY number LIMIT ?2"),
      removal(database, "DELETE FROM event WHERE server = ?1 AND number <= ?2"),
      withoutClients(database,
                     "SELECT id FROM server WHERE "
                     "NOT EXISTS (SELECT 1 FROM client WHERE server = id) AND "
                     "EXISTS (SELECT 1 FROM event WHERE server = id) LIMIT 1"),
      freePages(database, "PRAGMA freelist_count"),
      allPages(database, "PRAGMA page_count"),
      vacuum(database, "PRAGMA incremental_vacuum") {}

SqliteTrim::Removed SqliteTrim::remove(std::int64_t server,
                                       const Bounds& bounds) {
    Removed removed;
    std::int64_t last = 0;
    {
        SqliteRun run(oldest, server, bounds.events);
        std::int64_t bytes = 0;
        while (run.step()) {
            bytes += run.integer(1);
            const bool first = removed.events == 0;
            if (bytes > bounds.bytes && !(first && bounds.evenIfLarge)) {
                break;
            }
            last = run.integer(0);
            ++removed.events;
        }
        removed.all = bytes <= bounds.bytes && removed.events < bounds.events;
    }
    if (removed.events > 0) {
        SqliteRun(removal, server, last).exec();
    }
    return removed;
}

std::optional<std::int64_t> SqliteTrim::deserted() {
    SqliteRun run(withoutClients);
    if (!run.step()) {
        return std::nullopt;
    }
    return run.integer(0);
}

bool SqliteTrim::hasManyFreePages() {
    return pages().areManyFree();
}

// Each step returns one page. What was done so far counts if there is no next
// one; nothing can be returned of a file that was not made for it.
bool SqliteTrim::returnPages(const std::function<bool()>& mayGoOn) {
    Pages now = pages();
    SqliteRun run(vacuum);
    for (int returned = 1; now.areManyFree(); ++returned) {
        if (!run.step()) {
            return false;
        }
        --now.free;
        --now.all;
        if (returned % pagesAtOnce == 0 && !mayGoOn()) {
            return now.areManyFree();
        }
    }
    return false;
}

bool SqliteTrim::Pages::areManyFree() const {
    return free > fewPages && free > all / usedShare;
}

SqliteTrim::Pages SqliteTrim::pages() {
    SqliteRun free(freePages);
    SqliteRun all(allPages);
    free.step();
    all.step();
    return {free.integer(0), all.integer(0)};
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
