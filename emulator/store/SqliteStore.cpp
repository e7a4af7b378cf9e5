#include "emulator/store/SqliteStore.h"

#include <chrono>
#include <new>
#include <string>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include "emulator/store/LockHolder.h"
#include "emulator/store/SqliteSession.h"
#include "emulator/store/StoreError.h"

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
            throw StoreError(
                store +
                "is locked: " + describeLockHolder({path + "-shm", path}) +
                " holds its lock" + reason +
                "Let that process go on or end it, then repeat the call.");
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

// One deadline for all that a call waits for: the other threads of this
// process, the gate, and the locks of other programs.
template <typename Work>
auto SqliteStore::use(Work work) {
    const Deadline limit = deadline();
    const auto lock = OpenStores::instance().lockUntil(limit);
    try {
        if (!session) {
            session = std::make_unique<SqliteSession>(options, limit);
        }
        session->waitUntil(limit);
        try {
            return work(*session);
        } catch (const SQLite::Exception& error) {
            if (error.getErrorCode() != SQLITE_FULL || !session->isAtRest()) {
                throw;
            }
        }
        // The log may be what fills the disk. Nothing was written.
        session->cutLog();
        return work(*session);
    } catch (const SQLite::Exception& error) {
        dropIfStuck();
        throwStoreError(error, options.path);
    } catch (const std::bad_alloc&) {
        dropIfStuck();
        throw;
    }
}

SqliteStore::SqliteStore(SqliteOptions given) : options(std::move(given)) {
    OpenStores::instance().add(*this, deadline());
}

// What another thread has locked for good, in a child forked meanwhile, is left
// as it is.
SqliteStore::~SqliteStore() {
    if (!OpenStores::instance().remove(*this)) {
        static_cast<void>(session.release());
    }
}

void SqliteStore::open() {
    use([](SqliteSession&) { return 0; });
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

Deadline SqliteStore::deadline() const {
    return std::chrono::steady_clock::now() +
           std::chrono::milliseconds(options.busyTimeoutMilliseconds);
}

// Without memory a rollback may fail.
void SqliteStore::dropIfStuck() noexcept {
    if (session && !session->isAtRest()) {
        session.reset();
    }
}

void SqliteStore::closeNow() noexcept {
    session.reset();
}

void SqliteStore::closeTidily() noexcept {
    if (session) {
        session->tidyUp();
        session.reset();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
