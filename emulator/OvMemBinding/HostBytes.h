#ifndef EMULATOR_OVMEMBINDING_HOSTBYTES_H
#define EMULATOR_OVMEMBINDING_HOSTBYTES_H

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "OvMemCppBinding/platform/OvMemBinding.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

class HostBlocks;

// The heap functions that the application gave to OvMem_Init, and who keeps
// account of the blocks that are out.
struct HostHeap {
    OvMemAllocate allocate = nullptr;
    OvMemRelease release = nullptr;
    std::shared_ptr<HostBlocks> blocks = nullptr;  // null: nobody does

    // Null when there is no memory.
    void* take(std::size_t size) const;
    void giveBack(void* block) const noexcept;
};

// A growing row of bytes on the application's heap, always followed by a NUL.
// It owns its block and gives it back with the function that belongs to it.
//
// THROWS: std::bad_alloc when the application has no memory; the bytes are
// then as they were.
class HostBytes {
public:
    // Empty; allocates nothing.
    explicit HostBytes(HostHeap hostHeap = {}) : heap(std::move(hostHeap)) {}
    HostBytes(HostBytes&& other) noexcept;
    HostBytes& operator=(HostBytes&& other) noexcept;
    ~HostBytes();

    // REQUIRES: a heap was given.
    void append(std::string_view bytes);

    // Gives the block back.
    void clear() noexcept;

    std::string_view view() const { return {block ? block : "", length}; }

private:
    void reserve(std::size_t needed);

    HostHeap heap;
    char* block = nullptr;
    std::size_t length = 0;
    std::size_t capacity = 0;  // without the NUL
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
