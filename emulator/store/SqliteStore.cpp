#include "emulator/store/SqliteStore.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <thread>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include "emulator/store/LeaseFile.h"
#include "emulator/store/OpenLeases.h"
#include "emulator/store/SqliteFailure.h"
#include "emulator/store/SqliteSession.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/StoreFiles.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using namespace std::chrono_literals;

// How long a call may go on to tidy up, and stand at the gate for it; and how
// long others get to come in between.
constexpr auto tidyLimit = 2s;
constexpr auto tidyPatience = 250ms;
constexpr auto tidyPause = 1ms;

// A process that closes the store removes its log, which looks the same to
// whoever opens the store at that moment.
constexpr int mostReopenings = 20;

// A get has taken its time already, so what it leaves is put off to the next
// call. More than this is removed at once: a get of so many takes seconds.
constexpr std::int64_t mostPutOff = 200000;

}  // namespace

// One deadline for all that a call waits for: the other threads of this
// process, the gate, and the locks of other programs.
template <typename Work>
auto SqliteStore::use(Work work, IfAbsent ifAbsent) {
    const Deadline limit = deadline();
    const auto lock = OpenStores::instance().lockUntil(limit);
    int reopenings = 0;
    for (bool again = false;;) {
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
            again = true;
        } catch (const FilesReplaced&) {
            session.reset();
            if (++reopenings > mostReopenings) {
                throw StoreError("The files of the event store '" +
                                 options.path +
                                 "' are being replaced. Repeat the call when "
                                 "that is over.");
            }
        } catch (const std::exception&) {  // a refusal, damage, or no memory
            dropIfStuck();
            throw;
        }
    }
}

template <typename Work>
auto SqliteStore::useAndTidy(Work work, Tidying tidying, IfAbsent ifAbsent) {
    const Deadline limit = deadline();
    bool something = false;
    auto result = use(
        [&](SqliteSession& now) {
            auto done = work(now);
            something = takeOver(now.takeLeftover(), tidying);
            return done;
        },
        ifAbsent);
    if (something) {
        tidy(limit);
    }
    return result;
}

SqliteStore::SqliteStore(SqliteOptions given) : options(std::move(given)) {
    OpenStores::instance().add(*this, deadline());
}

// What another thread has locked for good, in a child forked meanwhile, is left
// as it is.
SqliteStore::~SqliteStore() {
    OpenLeases::instance().endAll(this);
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
    return useAndTidy(
        [&](SqliteSession& now) { return now.registerClient(caller); },
        Tidying::now, IfAbsent::make);
}

ClientList SqliteStore::unregisterClient(const Identity& caller) {
    return useAndTidy(
        [&](SqliteSession& now) { return now.unregisterClient(caller); },
        Tidying::now);
}

ClientList SqliteStore::sharedClients(const Identity& caller) {
    return useAndTidy(
        [&](SqliteSession& now) { return now.sharedClients(caller); },
        Tidying::now);
}

ClientList SqliteStore::putEvents(const Identity& caller,
                                  std::string_view events,
                                  std::string_view correlation) {
    return use([&](SqliteSession& now) {
        return now.putEvents(caller, events, correlation);
    });
}

std::optional<bool> SqliteStore::hasEvents(const Identity& caller) {
    return use([&](SqliteSession& now) { return now.hasEvents(caller); });
}

// Without the lock of OpenStores: other threads go on meanwhile.
std::shared_ptr<Lease> SqliteStore::lease(const Identity& caller) {
    return std::make_shared<LeaseFile>(options, caller, deadline(), this);
}

// One that brings something is not made to wait.
std::optional<PendingEvents> SqliteStore::getEvents(const Identity& caller) {
    const Deadline limit = deadline();
    bool something = false;
    auto events = use([&](SqliteSession& now) {
        auto got = now.getEvents(caller);
        something =
            got && got->text.empty() && takeOver(std::nullopt, Tidying::now);
        return got;
    });
    if (something) {
        tidy(limit);
    }
    return events;
}

void SqliteStore::consume(const Identity& caller, std::int64_t upto) {
    useAndTidy(
        [&](SqliteSession& now) {
            now.consume(caller, upto);
            return true;
        },
        Tidying::later);
}

bool SqliteStore::takeOver(const std::optional<Leftover>& leftover,
                           Tidying tidying) noexcept {
    if (putOff) {
        due = std::exchange(putOff, std::nullopt);
    }
    if (leftover && tidying == Tidying::later &&
        leftover->events <= mostPutOff) {
        putOff = leftover;
    } else if (leftover) {
        const std::int64_t before = due ? due->events : 0;
        due = Leftover{leftover->server, leftover->events + before};
    }
    return due.has_value();
}

// At least once, even if the call has taken all its time. Other threads of this
// process get their turn between two steps, as other processes do.
void SqliteStore::tidy(Deadline limit) noexcept {
    const auto start = std::chrono::steady_clock::now();
    const Deadline end = std::min(limit, start + tidyLimit);
    bool more = false;
    do {
        try {
            const auto lock =
                OpenStores::instance().lockUntil(start + tidyLimit);
            more = tidyOnce();
        } catch (const std::exception&) {
            return;  // another thread, or a fork, takes its time
        }
        if (more) {
            std::this_thread::sleep_for(tidyPause);
        }
    } while (more && std::chrono::steady_clock::now() < end);
}

// What the call was for has been done, so nothing that fails here may be its
// answer. Later calls find what is left.
bool SqliteStore::tidyOnce() noexcept {
    if (!session || !due) {
        return false;
    }
    try {
        session->waitUntil(std::chrono::steady_clock::now() + tidyPatience);
        if (session->tidy(*due)) {
            return true;
        }
    } catch (const SQLite::Exception& error) {
        dropIfStuck();
        recoverAfterTidying(error.getErrorCode());
    } catch (const FilesReplaced&) {
        session.reset();
    } catch (const std::exception&) {  // the gate is shut, or no memory
        dropIfStuck();
    }
    due.reset();
    return false;
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
        case SQLITE_CANTOPEN:
            // One call that failed makes SQLite open the file for reading
            // alone.
            session.reset();
            return true;
        default:
            return false;
    }
}

void SqliteStore::recoverAfterTidying(int sqliteError) noexcept {
    try {
        recoverFrom(sqliteError);
    } catch (const std::exception&) {
        session.reset();
    }
}

// Without memory a rollback may fail.
void SqliteStore::dropIfStuck() noexcept {
    if (session && !session->isAtRest()) {
        session.reset();
    }
}

void SqliteStore::closeNow() noexcept {
    if (session) {
        session->saveLostLog();
    }
    session.reset();
}

// What was put off is done now; there is nobody else to do it soon.
void SqliteStore::closeTidily() noexcept {
    if (!session) {
        return;
    }
    takeOver(std::nullopt, Tidying::now);
    const Deadline end = std::chrono::steady_clock::now() + tidyLimit;
    while (tidyOnce() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(tidyPause);
    }
    if (session) {
        session->tidyUp();
        session.reset();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
