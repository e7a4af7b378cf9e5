#ifndef EMULATOR_OVMEMBINDING_TRANSPORT_H
#define EMULATOR_OVMEMBINDING_TRANSPORT_H

#include <memory>
#include <mutex>

#include "emulator/OvMemBinding/HostBytes.h"
#include "emulator/store/EventStore.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// What lives from the first start of the transport in a process to its last
// end.
struct Session {
    HostHeap heap;                      // of the first start
    std::unique_ptr<EventStore> store;  // never null
};

// Counts the starts and ends of the transport in this process; several
// connections may start it. The first start opens the store that the
// environment names.
//
// Threads: any. A fork waits until no thread is starting or ending.
class Transport {
public:
    // The process's one transport. It is never destroyed, since threads may
    // use it until the very end.
    static Transport& instance();

    // THROWS: StoreError when the store cannot be opened; the transport is
    // then not started.
    void start(HostHeap heap);

    // Closes the store at the last end. More ends than starts do nothing.
    void stop();

    // Null while the transport is not started.
    std::shared_ptr<Session> session();

private:
    Transport();

    std::mutex mutex;
    std::size_t starts = 0;
    std::shared_ptr<Session> current;  // null when there is no start
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
