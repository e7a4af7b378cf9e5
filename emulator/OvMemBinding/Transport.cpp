#include "emulator/OvMemBinding/Transport.h"

#include <chrono>
#include <new>
#include <thread>
#include <utility>

#include <pthread.h>

#include "emulator/OvMemBinding/HostBlocks.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/StoreUrl.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using namespace std::chrono_literals;

constexpr auto lockLimit = 10s;
constexpr auto forkLimit = 11s;

// Registered behind the handlers of the stores, so that this lock is taken
// before theirs, as elsewhere.
[[gnu::constructor(201)]] void registerForForks() {
    ::pthread_atfork([] { Transport::instance().beforeFork(); },
                     [] { Transport::instance().inParent(); },
                     [] { Transport::instance().inChild(); });
}

}  // namespace

class Transport::Lock {
public:
    explicit Lock(ForkLock& lock) : mutex(lock) {
        if (!mutex.tryLockFor(lockLimit)) {
            throw StoreError(
                mutex.isLost()
                    ? "This process was forked while another thread used the "
                      "transport, and cannot use it any more. Fork while no "
                      "thread is using it, or start another program in the "
                      "child."
                    : "This process is in the middle of a fork that does not "
                      "end. Repeat the call.");
        }
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { mutex.unlock(); }

private:
    ForkLock& mutex;
};

Transport::Use::Use(Transport& owner) : transport(owner) {
    const Lock lock(transport.mutex);
    used = transport.current;
    if (used) {
        ++used->users;
    }
}

// Without the lock the count stays too high, and the last end waits in vain.
Transport::Use::~Use() {
    if (used && transport.mutex.tryLockFor(forkLimit)) {
        --used->users;
        transport.mutex.unlock();
    }
}

Transport& Transport::instance() noexcept {
    alignas(Transport) static unsigned char room[sizeof(Transport)];
    static auto* const transport = new (room) Transport;
    return *transport;
}

void Transport::start(OvMemAllocate allocate, OvMemRelease release) {
    std::shared_ptr<Session> session;
    {
        const Lock lock(mutex);
        if (!current) {
            session = std::make_shared<Session>();
            session->heap = {
                allocate, release,
                std::make_shared<HostBlocks>(allocate, release, mutex)};
            session->store = openStore(storeUrlOfEnvironment());
            current = std::move(session);
        }
        session = current;
        ++starts;
    }
    try {
        session->store->open();
    } catch (...) {
        session.reset();
        stop();
        throw;
    }
}

void Transport::stop() {
    std::shared_ptr<Session> last;  // the store is closed without the lock
    {
        const Lock lock(mutex);
        if (starts > 0 && --starts == 0) {
            last = std::move(current);
        }
    }
    if (!last) {
        return;
    }
    if (awaitUsers(*last)) {
        last->heap.blocks->giveAllBack();
    } else {
        last->heap.blocks->leaveAll();
    }
}

// No call begins any more, and each ends soon, unless the disk is slow.
bool Transport::awaitUsers(const Session& session) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        {
            const Lock lock(mutex);
            if (session.users == 0) {
                return true;
            }
            if (std::chrono::steady_clock::now() >= deadline) {
                return false;
            }
        }
        std::this_thread::sleep_for(1ms);
    }
}

void Transport::beforeFork() noexcept {
    mutex.beforeFork(forkLimit);
}

// The threads that were in the middle of a call are not in the child.
void Transport::inChild() noexcept {
    mutex.inChild();
    if (!mutex.isLost() && current) {
        current->users = 0;
    }
}

void Transport::atEnd() noexcept {
    if (mutex.isLost() || !mutex.tryLockFor(1s)) {
        return;
    }
    const std::shared_ptr<Session> session = current;
    mutex.unlock();
    if (session) {
        session->heap.blocks->leaveAll();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
