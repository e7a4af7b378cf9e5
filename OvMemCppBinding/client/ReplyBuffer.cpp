#include "OvMemCppBinding/client/ReplyBuffer.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "OvMemCppBinding/client/WireFormat.h"

namespace Orvane::Net::OvModelEventManager::Client {

namespace {

constexpr std::size_t firstCapacity = WireFormat::receiveBufferSize;

}  // namespace

void ReplyBuffer::Release::operator()(char* bytes) const {
    std::free(bytes);
}

ReplyBuffer::ReplyBuffer()
    : capacity(firstCapacity),
      total(0),
      block(static_cast<char*>(std::malloc(firstCapacity))) {
    if (!block)
        throw std::bad_alloc();
}

// Past the first block every chunk takes a new block. Handing that to realloc
// leaves the C library free to keep the bytes in place.
void ReplyBuffer::append(const char* bytes, std::size_t length) {
    const std::size_t needed = total + length;
    while (needed > capacity)
        capacity *= 2;
    if (capacity > firstCapacity) {
        void* grown = std::realloc(block.get(), capacity);
        if (grown == nullptr)
            throw std::bad_alloc();
        // realloc has freed the old block.
        static_cast<void>(block.release());
        block.reset(static_cast<char*>(grown));
    }
    std::memcpy(block.get() + total, bytes, length);
    total = needed;
}

std::string ReplyBuffer::text() const {
    return std::string(block.get(), total);
}

}  // namespace Orvane::Net::OvModelEventManager::Client
