#include "emulator/store/ForkLock.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

bool ForkLock::tryLockUntil(Deadline deadline) noexcept {
    return !lost && (mutex.try_lock() || mutex.try_lock_until(deadline));
}

bool ForkLock::tryLockFor(std::chrono::milliseconds limit) noexcept {
    return !lost && (mutex.try_lock() || mutex.try_lock_for(limit));
}

void ForkLock::unlock() noexcept {
    mutex.unlock();
}

bool ForkLock::beforeFork(std::chrono::milliseconds limit) noexcept {
    if (!tryLockFor(limit)) {
        return false;
    }
    forker = ::pthread_self();
    forking = true;
    return true;
}

void ForkLock::inParent() noexcept {
    if (isForkers()) {
        forking = false;
        unlock();
    }
}

// The child is a copy of the thread that forked and of no other one: a lock
// held by another one will never be free again.
void ForkLock::inChild() noexcept {
    if (isForkers()) {
        forking = false;
        unlock();
    } else {
        lost = true;
    }
}

bool ForkLock::isForkers() const noexcept {
    return forking && ::pthread_equal(forker, ::pthread_self()) != 0;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
