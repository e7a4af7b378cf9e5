#include "emulator/OvMemBinding/HostBlocks.h"

#include <chrono>
#include <mutex>
#include <new>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// Held for moments only, but also by a thread that forks.
constexpr std::chrono::seconds limit{11};

}  // namespace

HostBlocks::HostBlocks(OvMemAllocate allocateBlock, OvMemRelease releaseBlock,
                       ForkLock& forkLock)
    : allocate(allocateBlock), release(releaseBlock), lock(forkLock) {
    first.previous = &first;
    first.next = &first;
}

void* HostBlocks::take(std::size_t size) {
    if (!lock.tryLockFor(limit)) {
        return nullptr;
    }
    const std::lock_guard held(lock, std::adopt_lock);
    void* room = closed ? nullptr : allocate(sizeof(Link) + size);
    if (!room) {
        return nullptr;
    }
    auto* link = new (room) Link{first.previous, &first};
    link->previous->next = link;
    link->next->previous = link;
    return link + 1;
}

// A block that cannot be taken out of the ring stays in it until all go back.
void HostBlocks::giveBack(void* block) noexcept {
    if (!lock.tryLockFor(limit)) {
        return;
    }
    const std::lock_guard held(lock, std::adopt_lock);
    if (!closed) {
        auto* link = static_cast<Link*>(block) - 1;
        link->previous->next = link->next;
        link->next->previous = link->previous;
        release(link);
    }
}

void HostBlocks::giveAllBack() noexcept {
    if (!lock.tryLockFor(limit)) {
        return;
    }
    const std::lock_guard held(lock, std::adopt_lock);
    Link* link = closed ? &first : first.next;
    closed = true;
    while (link != &first) {
        Link* next = link->next;
        release(link);
        link = next;
    }
}

void HostBlocks::leaveAll() noexcept {
    if (lock.tryLockFor(limit)) {
        closed = true;
        lock.unlock();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
