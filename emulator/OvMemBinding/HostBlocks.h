#ifndef EMULATOR_OVMEMBINDING_HOSTBLOCKS_H
#define EMULATOR_OVMEMBINDING_HOSTBLOCKS_H

#include <cstddef>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "emulator/store/ForkLock.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// The blocks that the emulator has from the application's heap, from the first
// start of the transport to its last end. At the last end all of them go back,
// whichever thread they belong to; after it the heap functions of the
// application are never called again.
//
// Threads: any. Nobody may use a block while giveAllBack runs.
class HostBlocks {
public:
    // `forkLock` must outlive the blocks.
    HostBlocks(OvMemAllocate allocateBlock, OvMemRelease releaseBlock,
               ForkLock& forkLock);
    HostBlocks(const HostBlocks&) = delete;
    HostBlocks& operator=(const HostBlocks&) = delete;
    ~HostBlocks() = default;  // what was not given back is left

    // Null when the application has no memory, and after the last end.
    void* take(std::size_t size);

    // Does nothing for a block that went back with all the others.
    void giveBack(void* block) noexcept;

    void giveAllBack() noexcept;

    // Leaves everything as it is from now on: at the end of the process the
    // application's heap may be gone, and a call that does not end may still
    // use its blocks.
    void leaveAll() noexcept;

private:
    struct alignas(std::max_align_t) Link {
        Link* previous = nullptr;
        Link* next = nullptr;
    };

    const OvMemAllocate allocate;
    const OvMemRelease release;
    ForkLock& lock;
    Link first;  // of a ring; the block follows its link
    bool closed = false;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
