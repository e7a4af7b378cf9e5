#include "emulator/store/SqliteStore.h"

#include <chrono>
#include <new>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include "emulator/store/SqliteFailure.h"
#include "emulator/store/SqliteSession.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/StoreFiles.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// One deadline for all that a call waits for: the other threads of this
// process, the gate, and the locks of other programs.
template <typename Work>
auto SqliteStore::use(Work work, IfAbsent ifAbsent) {
    const Deadline limit = deadline();
    const auto lock = OpenStores::instance().lockUntil(limit);
    for (bool again = false;; again = true) {
        try {
            if (!session && ifAbsent == IfAbsent::nothing &&
                !StoreFiles(options).exist()) {
                return decltype(work(*session))();
            }
            if (!session) {
                session = std::make_unique<SqliteSession>(options, limit);
            }
            session->waitUntil(limit);
            return work(*session);
        } catch (const SQLite::Exception& error) {
            const int systemError = session ? session->systemError() : 0;
            dropIfStuck();
            const bool late = std::chrono::steady_clock::now() >= limit;
            if (again || !recoverFrom(error.getErrorCode()) || late) {
                throwSqliteFailure(error, options.path, systemError);
            }
        } catch (const FilesReplaced&) {
            session.reset();
            if (again) {
                throw StoreError("The files of the event store '" +
                                 options.path +
                                 "' are being replaced. Repeat the call when "
                                 "that is over.");
            }
        } catch (const std::bad_alloc&) {
            dropIfStuck();
            throw;
        }
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

// A store is made by the first registration.
void SqliteStore::open() {
    if (!use([](SqliteSession&) { return true; })) {
        StoreFiles(options).requirePlace();
    }
}

ClientList SqliteStore::registerClient(const Identity& caller) {
    return use([&](SqliteSession& now) { return now.registerClient(caller); },
               IfAbsent::make);
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

// A transaction that failed left nothing behind, so it can be run again.
bool SqliteStore::recoverFrom(int sqliteError) {
    switch (sqliteError) {
        case SQLITE_FULL:
            // The log may be what fills the disk.
            if (session) {
                session->cutLog();
            }
            return true;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_PROTOCOL:
            // A read that failed once looks like damage. Look again, with
            // nothing remembered.
            session.reset();
            return true;
        case SQLITE_IOERR:
            // The connection may have lost count of its locks.
            session.reset();
            return false;
        default:
            return false;
    }
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
