#include "emulator/store/SqliteStore.h"

#include <chrono>
#include <mutex>
#include <new>
#include <string>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>
#include <unistd.h>

#include "emulator/store/SqliteSession.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/StoreMutex.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

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
    const auto deadline =
        std::chrono::steady_clock::now() +
        std::chrono::milliseconds(options.busyTimeoutMilliseconds);
    const std::lock_guard lock(storeMutex());
    try {
        SqliteSession& now = sessionOfThisProcess();
        now.waitUntil(deadline);
        return work(now);
    } catch (const SQLite::Exception& error) {
        throwStoreError(error, options.path);
    }
}

SqliteStore::SqliteStore(SqliteOptions given) : options(std::move(given)) {
    use([](SqliteSession&) { return 0; });
}

SqliteStore::~SqliteStore() {
    const std::lock_guard lock(storeMutex());
    session.reset();
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

// The parent's connection was at rest when it was copied, and its locks were
// not copied. Closing the copy tells SQLite so; it cannot take the write-ahead
// log away, since that needs a lock that the parent's own connection prevents.
SqliteSession& SqliteStore::sessionOfThisProcess() {
    if (!session || process != ::getpid()) {
        session.reset();
        session = std::make_unique<SqliteSession>(options);
        process = ::getpid();
    }
    return *session;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
