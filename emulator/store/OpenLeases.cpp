#include "emulator/store/OpenLeases.h"

#include <chrono>
#include <new>

#include <pthread.h>

#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using namespace std::chrono_literals;

constexpr auto lockLimit = 10s;
constexpr auto leaseLimit = 10min;  // a lease must not be left in the list

// Registered before the handlers of the stores, so that this lock is taken
// after theirs, as elsewhere.
[[gnu::constructor(199)]] void registerLeasesForForks() {
    ::pthread_atfork([] { OpenLeases::instance().beforeFork(); },
                     [] { OpenLeases::instance().inParent(); },
                     [] { OpenLeases::instance().inChild(); });
}

}  // namespace

OpenLeases& OpenLeases::instance() noexcept {
    alignas(OpenLeases) static unsigned char room[sizeof(OpenLeases)];
    static auto* const leases = new (room) OpenLeases;
    return *leases;
}

OpenLeases::Lock OpenLeases::lock() {
    if (!mutex.tryLockFor(lockLimit)) {
        throw StoreError(
            "This process is in the middle of a fork that does not end, or "
            "was forked without waiting. Repeat the call in the parent.");
    }
    return Lock(*this, std::adopt_lock);
}

void OpenLeases::add(OpenLease& lease, const void* store) {
    leases.push_back({&lease, store});
}

void OpenLeases::remove(OpenLease& lease) noexcept {
    if (mutex.tryLockFor(leaseLimit)) {
        lease.end();
        std::erase_if(leases,
                      [&](const Entry& each) { return each.lease == &lease; });
        unlock();
    }
}

void OpenLeases::endAll(const void* store) noexcept {
    if (mutex.tryLockFor(lockLimit)) {
        for (const Entry& each : leases) {
            if (each.store == store) {
                each.lease->end();
            }
        }
        unlock();
    }
}

void OpenLeases::beforeFork() noexcept {
    mutex.beforeFork(lockLimit);
}

// The leases of other threads are on stacks that are no more.
void OpenLeases::inChild() noexcept {
    mutex.inChild();
    ++forks;
    if (!mutex.isLost()) {
        for (const Entry& each : leases) {
            each.lease->closeCopy();
        }
        leases.clear();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
