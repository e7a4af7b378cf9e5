#include "emulator/store/OpenStores.h"

#include <algorithm>
#include <chrono>
#include <new>

#include <pthread.h>
#include <sqlite3.h>

#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using namespace std::chrono_literals;

// A little more than any call waits.
constexpr auto forkLimit = 11s;
constexpr auto endLimit = 2s;
constexpr auto removeLimit = 10min;  // a store must not be left in the list

// As early as can be: handlers that the program registers itself then run
// before ours when it forks, and find nothing of ours locked.
[[gnu::constructor(200)]] void registerForForks() {
    ::pthread_atfork([] { OpenStores::instance().beforeFork(); },
                     [] { OpenStores::instance().inParent(); },
                     [] { OpenStores::instance().inChild(); });
}

// After the destructors of the program and of the libraries that use this one.
[[gnu::destructor]] void closeAtEnd() {
    OpenStores::instance().atEnd();
}

}  // namespace

OpenStores& OpenStores::instance() noexcept {
    alignas(OpenStores) static unsigned char room[sizeof(OpenStores)];
    static auto* const stores = new (room) OpenStores;
    return *stores;
}

OpenStores::Lock OpenStores::lockUntil(Deadline deadline) {
    if (mutex.tryLockUntil(deadline)) {
        Lock lock(*this, std::adopt_lock);
        if (ended) {
            throw StoreError(
                "The process is ending, and its event store is closed. Make "
                "the call earlier.");
        }
        return lock;
    }
    if (mutex.isLost()) {
        throw StoreError(
            "This process was forked while another thread used the event "
            "store, and cannot use it any more. Fork while no thread is "
            "using it, or start another program in the child.");
    }
    throw StoreError(
        "Another thread of this process has used the event store for too "
        "long, or is in the middle of a fork. Repeat the call.");
}

void OpenStores::add(OpenStore& store, Deadline deadline) {
    const Lock lock = lockUntil(deadline);
    stores.push_back(&store);
}

bool OpenStores::remove(OpenStore& store) noexcept {
    if (!mutex.tryLockFor(removeLimit)) {
        return false;
    }
    store.closeTidily();
    stores.erase(std::remove(stores.begin(), stores.end(), &store),
                 stores.end());
    unlock();
    return true;
}

void OpenStores::beforeFork() noexcept {
    if (mutex.beforeFork(forkLimit)) {
        for (OpenStore* store : stores) {
            store->closeNow();
        }
        // The child would go on with the random numbers of its parent.
        ::sqlite3_randomness(0, nullptr);
    }
}

void OpenStores::atEnd() noexcept {
    if (mutex.tryLockFor(endLimit)) {
        ended = true;
        for (OpenStore* store : stores) {
            store->closeTidily();
        }
        unlock();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
