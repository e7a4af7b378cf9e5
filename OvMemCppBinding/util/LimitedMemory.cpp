#include "OvMemCppBinding/util/LimitedMemory.h"

#include <cstdlib>
#include <limits>
#include <new>
#include <string>

#include <xercesc/util/OutOfMemoryException.hpp>

#include "OvMemCppBinding/util/DomException.h"

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

// As much as a block may have; sums of two do not overflow.
constexpr std::size_t unlimited = std::numeric_limits<std::ptrdiff_t>::max();

// Stands before every block and tells its size.
struct alignas(std::max_align_t) Header {
    std::size_t size;
};

}  // namespace

LimitedMemory& LimitedMemory::instance() {
    alignas(LimitedMemory) static unsigned char room[sizeof(LimitedMemory)];
    static auto* const memory = new (room) LimitedMemory;
    return *memory;
}

LimitedMemory::LimitedMemory()
    : growth(unlimited), limit(unlimited), total(0) {}

void LimitedMemory::limitGrowth(std::size_t bytes) {
    growth = bytes;
    const std::size_t room = unlimited - total;
    limit = bytes < room ? total + bytes : unlimited;
}

void LimitedMemory::liftLimit() {
    limitGrowth(unlimited);
}

std::size_t LimitedMemory::held() const {
    return total;
}

void* LimitedMemory::allocate(XMLSize_t size) {
    return allocateBehind(0, size);
}

void* LimitedMemory::allocateBehind(std::size_t uncounted, XMLSize_t size) {
    if (!take(size)) {
        throw DomException(
            "XmlPlatformGuard: the XML library may hold no more than " +
            std::to_string(growth) + " bytes");
    }
    void* const block = std::malloc(sizeof(Header) + uncounted + size);
    if (block == nullptr) {
        total -= size;
        throw xercesc::OutOfMemoryException();
    }
    return new (block) Header{size} + 1;
}

void LimitedMemory::deallocate(void* block) {
    if (block == nullptr)
        return;
    Header* const header = static_cast<Header*>(block) - 1;
    total -= header->size;
    std::free(header);
}

bool LimitedMemory::take(std::size_t size) {
    if (size > limit)
        return false;
    std::size_t before = total;
    do {
        if (before > limit - size)
            return false;
    } while (!total.compare_exchange_weak(before, before + size));
    return true;
}

xercesc::MemoryManager* LimitedMemory::getExceptionMemoryManager() {
    return this;
}

}  // namespace Orvane::Net::OvModelEventManager::Util
