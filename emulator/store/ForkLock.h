#ifndef EMULATOR_STORE_FORKLOCK_H
#define EMULATOR_STORE_FORKLOCK_H

#include <atomic>
#include <chrono>
#include <mutex>

#include <pthread.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

// When a wait is over.
using Deadline = std::chrono::steady_clock::time_point;

// A lock that can be held across a fork, and for which nobody waits without
// end.
//
// The handlers of a fork may be called while another thread of the program is
// in the middle of something, and handlers of the program itself may wait for
// that thread. So a fork waits for the lock only for a while. If it does not
// get it, the child cannot know what the lock protects: there the lock is lost,
// and every attempt to take it fails at once.
class ForkLock {
public:
    ForkLock() = default;
    ForkLock(const ForkLock&) = delete;
    ForkLock& operator=(const ForkLock&) = delete;

    // False if the lock was not free until the deadline, or is lost.
    bool tryLockUntil(Deadline deadline) noexcept;
    bool tryLockFor(std::chrono::milliseconds limit) noexcept;
    void unlock() noexcept;
    void lock() = delete;  // for ever

    // True in a child that was forked while another thread held the lock.
    bool isLost() const noexcept { return lost; }

    // The three handlers of a fork. The first one takes the lock, and tells
    // whether it has it.
    bool beforeFork(std::chrono::milliseconds limit) noexcept;
    void inParent() noexcept;
    void inChild() noexcept;

private:
    // True if the calling thread took the lock in order to fork.
    bool isForkers() const noexcept;

    std::timed_mutex mutex;
    std::atomic<bool> forking = false;
    std::atomic<bool> lost = false;
    pthread_t forker{};  // while `forking` is set
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
