#include "emulator/store/SqliteStore.h"

#include <memory>
#include <new>
#include <string>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>
#include <unistd.h>

#include "emulator/store/SqliteSession.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

struct SqliteStore::Opened {
    explicit Opened(const SqliteOptions& options)
        : process(::getpid()), session(options) {}

    const pid_t process;
    SqliteSession session;
    Opened* parents = nullptr;  // never used and never destroyed here
};

namespace {

[[noreturn]] void throwStoreError(const SQLite::Exception& error,
                                  const std::string& path) {
    const std::string store = "The event store '" + path + "' ";
    const std::string reason = " (" + std::string(error.what()) + "). ";
    switch (error.getErrorCode()) {
        case SQLITE_NOMEM:
            throw std::bad_alloc();
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw StoreError(store + "is locked by another program" + reason +
                             "Find what keeps it open for writing, then "
                             "repeat the call.");
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
            throw StoreError(store + "is damaged or not a store" + reason +
                             "Move the file away, or set OVMEM_STORE to "
                             "another one.");
        case SQLITE_FULL:
            throw StoreError(store + "has no room left" + reason +
                             "Free space on its disk, then repeat the call.");
        default:
            throw StoreError(store + "cannot be used" + reason +
                             "Make the file and its folder readable and "
                             "writable, or set OVMEM_STORE to another file.");
    }
}

}  // namespace

template <typename Work>
auto SqliteStore::use(Work work) {
    try {
        return work(session());
    } catch (const SQLite::Exception& error) {
        throwStoreError(error, options.path);
    }
}

SqliteStore::SqliteStore(SqliteOptions given)
    : options(std::move(given)), opened(nullptr) {
    use([](SqliteSession&) { return 0; });
}

SqliteStore::~SqliteStore() {
    const Opened* last = opened.load();
    if (last->process == ::getpid()) {
        delete last;
    }
}

ClientList SqliteStore::registerClient(const Identity& caller) {
    return use([&](SqliteSession& now) { return now.registerClient(caller); });
}

ClientList SqliteStore::unregisterClient(const Identity& caller) {
    return use(
        [&](SqliteSession& now) { return now.unregisterClient(caller); });
}

ClientList SqliteStore::sharedClients(const Identity& caller) {
    return use([&](SqliteSession& now) { return now.sharedClients(caller); });
}

ClientList SqliteStore::putEvents(const Identity& caller,
                                  std::string_view events) {
    return use(
        [&](SqliteSession& now) { return now.putEvents(caller, events); });
}

std::optional<PendingEvents> SqliteStore::getEvents(const Identity& caller) {
    return use([&](SqliteSession& now) { return now.getEvents(caller); });
}

void SqliteStore::consume(const Identity& caller, std::int64_t upto) {
    use([&](SqliteSession& now) { now.consume(caller, upto); });
}

// No lock: a child inherits locks that nobody will ever open.
SqliteSession& SqliteStore::session() {
    Opened* now = opened.load();
    if (now && now->process == ::getpid()) {
        return now->session;
    }
    auto fresh = std::make_unique<Opened>(options);
    fresh->parents = now;
    if (opened.compare_exchange_strong(now, fresh.get())) {
        return fresh.release()->session;
    }
    return now->session;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
