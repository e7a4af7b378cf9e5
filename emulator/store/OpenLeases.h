#ifndef EMULATOR_STORE_OPENLEASES_H
#define EMULATOR_STORE_OPENLEASES_H

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include "emulator/store/ForkLock.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// A lease that may have a file open. Both functions are called with the lock of
// OpenLeases.
class OpenLease {
public:
    // Lets go of the lease.
    virtual void end() noexcept = 0;

    // Closes the file alone: in a child, where the lease is the parent's.
    virtual void closeCopy() noexcept = 0;

protected:
    ~OpenLease() = default;
};

// Which files of leases this process has open, and the lock under which it
// opens and closes them.
//
// A lock of such a file would be kept by a child as well, beyond the life of
// its parent. So a child closes its copies, also of the files for which other
// threads of the parent were waiting.
class OpenLeases {
public:
    using Lock = std::unique_lock<OpenLeases>;

    // The process's one object. It is never destroyed.
    static OpenLeases& instance() noexcept;

    OpenLeases() = default;
    OpenLeases(const OpenLeases&) = delete;
    OpenLeases& operator=(const OpenLeases&) = delete;

    // Nobody has the lock for long.
    //
    // THROWS: StoreError in the middle of a fork that does not end.
    Lock lock();

    // With the lock. `store` is that to which the lease belongs.
    void add(OpenLease& lease, const void* store);

    // The lease has ended, too. Does nothing if the lock cannot be had.
    void remove(OpenLease& lease) noexcept;

    // Ends all leases of a store.
    void endAll(const void* store) noexcept;

    // How many forks are between this process and the first one.
    std::uint64_t generation() const noexcept { return forks; }

    // For Lock.
    void unlock() noexcept { mutex.unlock(); }

    // For the process: the handlers of a fork.
    void beforeFork() noexcept;
    void inParent() noexcept { mutex.inParent(); }
    void inChild() noexcept;

private:
    struct Entry {
        OpenLease* lease;
        const void* store;
    };

    ForkLock mutex;
    std::vector<Entry> leases;
    std::atomic<std::uint64_t> forks = 0;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
