#ifndef EMULATOR_STORE_OPENSTORES_H
#define EMULATOR_STORE_OPENSTORES_H

#include <mutex>
#include <vector>

#include "emulator/store/ForkLock.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// A store that may have files open.
//
// Both functions are called with the lock of OpenStores, never from two
// threads. The store opens its files again when it needs them.
class OpenStore {
public:
    // Closes everything at once. Waits for others a moment at most, and only if
    // something would be lost.
    virtual void closeNow() noexcept = 0;

    // Closes everything, and tidies up if that takes no long wait.
    virtual void closeTidily() noexcept = 0;

protected:
    ~OpenStore() = default;
};

// Which stores this process has open, and the one lock under which it uses
// them.
//
// Nothing that is open crosses a fork: the locks of a file belong to the
// process that took them, and a child that closed an inherited file would take
// away what its parent still uses. So everything is closed before a fork, and
// opened again on both sides by whoever needs it next.
//
// When the process ends, the stores are closed after the destructors of the
// program; whoever comes later is refused.
class OpenStores {
public:
    using Lock = std::unique_lock<OpenStores>;

    // The process's one object. It is never destroyed.
    static OpenStores& instance() noexcept;

    OpenStores() = default;
    OpenStores(const OpenStores&) = delete;
    OpenStores& operator=(const OpenStores&) = delete;

    // THROWS: StoreError when another thread of this process keeps the lock
    // until the deadline, when this process was forked while another thread
    // had it, or when the process is ending.
    Lock lockUntil(Deadline deadline);

    // THROWS: as lockUntil.
    void add(OpenStore& store, Deadline deadline);

    // Closes it, too. False if the lock cannot be had; then neither is done.
    bool remove(OpenStore& store) noexcept;

    // For Lock.
    void unlock() noexcept { mutex.unlock(); }

    // For the process: the handlers of a fork, and its end.
    void beforeFork() noexcept;
    void inParent() noexcept { mutex.inParent(); }
    void inChild() noexcept { mutex.inChild(); }
    void atEnd() noexcept;

private:
    ForkLock mutex;
    std::vector<OpenStore*> stores;
    bool ended = false;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
