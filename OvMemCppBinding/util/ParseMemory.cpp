#include "OvMemCppBinding/util/ParseMemory.h"

#include <new>

namespace Orvane::Net::OvModelEventManager::Util {

ParseMemory::ParseMemory(LimitedMemory& theSource, ParseTime& theTime)
    : source(theSource), time(theTime), ring{&ring, &ring} {}

ParseMemory::~ParseMemory() {
    while (ring.next != &ring)
        deallocate(ring.next + 1);
}

void* ParseMemory::allocate(XMLSize_t size) {
    time.checkOnce();
    void* const room = source.allocateBehind(sizeof(Link), size);
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
