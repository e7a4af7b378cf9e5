#ifndef EMULATOR_OVMEMBINDING_TRANSPORT_H
#define EMULATOR_OVMEMBINDING_TRANSPORT_H

#include <chrono>
#include <cstddef>
#include <memory>

#include "emulator/OvMemBinding/HostBytes.h"
#include "emulator/store/EventStore.h"
#include "emulator/store/ForkLock.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// What lives from the first start of the transport in a process to its last
// end.
struct Session {
    HostHeap heap;                      // of the first start
    std::unique_ptr<EventStore> store;  // never null
    std::size_t users = 0;              // calls in progress
};

// Counts the starts and ends of the transport in this process; several
// connections may start it. The first start takes the store that the
// environment names.
//
// Threads: any.
class Transport {
public:
    // A call in progress. The last end of the transport waits for it.
    class Use {
    public:
        explicit Use(Transport& owner);
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use();

        // Null if the transport is not started.
        const std::shared_ptr<Session>& session() const { return used; }

    private:
        Transport& transport;
        std::shared_ptr<Session> used;
    };

    // The process's one transport. It is never destroyed, since threads may
    // use it until the very end.
    static Transport& instance() noexcept;

    // `usersLimit`: how long the last end waits for calls in progress.
    explicit Transport(
        std::chrono::milliseconds usersLimit = std::chrono::seconds(11))
        : patience(usersLimit) {}
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    // Every start opens the store, if it is not open.
    //
    // THROWS: StoreError when the store cannot be opened; this start then does
    // not count.
    void start(OvMemAllocate allocate, OvMemRelease release);

    // At the last end, closes the store and gives everything back to the
    // application's heap. If a call takes too long, what it may use stays: the
    // heap is left as it is, and the store is closed after the call. More ends
    // than starts do nothing.
    //
    // THROWS: StoreError when a fork of this process keeps everybody waiting.
    void stop();

    // For the process: the handlers of a fork, and its end.
    void beforeFork() noexcept;
    void inParent() noexcept { mutex.inParent(); }
    void inChild() noexcept;
    void atEnd() noexcept;

private:
    class Lock;

    // False if there are still some when time is up.
    bool awaitUsers(const Session& session);

    const std::chrono::milliseconds patience;
    ForkLock mutex;
    std::size_t starts = 0;
    std::shared_ptr<Session> current;  // null when there is no start
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
