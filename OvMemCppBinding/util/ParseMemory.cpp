#include "OvMemCppBinding/util/ParseMemory.h"

#include <algorithm>
#include <limits>
#include <new>

namespace Orvane::Net::OvModelEventManager::Util {

ParseMemory::ParseMemory(xercesc::MemoryManager& theSource, ParseTime& theTime)
    : source(theSource), time(theTime), ring{&ring, &ring} {}

ParseMemory::~ParseMemory() {
    while (ring.next != &ring)
        deallocate(ring.next + 1);
}

void* ParseMemory::allocate(XMLSize_t size) {
    time.checkOnce();
    // A size that no block can have is for the source to refuse.
    constexpr XMLSize_t most =
        std::numeric_limits<XMLSize_t>::max() - sizeof(Link);
    void* const room = source.allocate(sizeof(Link) + std::min(size, most));
    Link* const link = new (room) Link{&ring, ring.next};
    ring.next->previous = link;
    ring.next = link;
    return link + 1;
}

void ParseMemory::deallocate(void* block) {
    if (block == nullptr)
        return;
    Link* const link = static_cast<Link*>(block) - 1;
    link->previous->next = link->next;
    link->next->previous = link->previous;
    source.deallocate(link);
}

xercesc::MemoryManager* ParseMemory::getExceptionMemoryManager() {
    return source.getExceptionMemoryManager();
}

}  // namespace Orvane::Net::OvModelEventManager::Util
