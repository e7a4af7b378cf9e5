#include "emulator/OvMemBinding/HostBytes.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "emulator/OvMemBinding/HostBlocks.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

void* HostHeap::take(std::size_t size) const {
    return blocks ? blocks->take(size) : allocate(size);
}

void HostHeap::giveBack(void* block) const noexcept {
    if (blocks) {
        blocks->giveBack(block);
    } else {
        release(block);
    }
}

// What was moved from keeps its heap, and can be filled again.
HostBytes::HostBytes(HostBytes&& other) noexcept : HostBytes(other.heap) {
    block = std::exchange(other.block, nullptr);
    length = std::exchange(other.length, 0);
    capacity = std::exchange(other.capacity, 0);
}

HostBytes& HostBytes::operator=(HostBytes&& other) noexcept {
    if (this != &other) {
        clear();
        heap = other.heap;
        block = std::exchange(other.block, nullptr);
        length = std::exchange(other.length, 0);
        capacity = std::exchange(other.capacity, 0);
    }
    return *this;
}

HostBytes::~HostBytes() {
    clear();
}

void HostBytes::append(std::string_view bytes) {
    reserve(length + bytes.size());
    std::copy(bytes.begin(), bytes.end(), block + length);
    length += bytes.size();
    block[length] = '\0';
}

void HostBytes::clear() noexcept {
    if (block) {
        heap.giveBack(block);
    }
    block = nullptr;
    length = 0;
    capacity = 0;
}

void HostBytes::reserve(std::size_t needed) {
    if (block && needed <= capacity) {
        return;
    }
    const std::size_t room = std::max(needed, 2 * capacity);
    auto* larger = static_cast<char*>(heap.take(room + 1));
    if (!larger) {
        throw std::bad_alloc();
    }
    if (block) {
        std::memcpy(larger, block, length);
        heap.giveBack(block);
    }
    block = larger;
    capacity = room;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
