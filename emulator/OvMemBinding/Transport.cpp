#include "emulator/OvMemBinding/Transport.h"

#include <utility>

#include <pthread.h>

#include "emulator/store/StoreMutex.h"
#include "emulator/store/StoreUrl.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

Transport& Transport::instance() {
    static auto* const transport = new Transport;
    return *transport;
}

// Without this a child could inherit the lock from a thread that it has not.
Transport::Transport() {
    storeMutex();  // taken under our own lock, so registered before it
    ::pthread_atfork([] { instance().mutex.lock(); },
                     [] { instance().mutex.unlock(); },
                     [] { instance().mutex.unlock(); });
}

void Transport::start(HostHeap heap) {
    const std::lock_guard lock(mutex);
    if (!current) {
        auto session = std::make_shared<Session>();
        session->heap = heap;
        session->store = openStore(storeUrlOfEnvironment());
        current = std::move(session);
    }
    ++starts;
}

void Transport::stop() {
    std::shared_ptr<Session> last;  // closed when the lock is free again
    const std::lock_guard lock(mutex);
    if (starts > 0 && --starts == 0) {
        last = std::move(current);
    }
}

std::shared_ptr<Session> Transport::session() {
    const std::lock_guard lock(mutex);
    return current;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
