#ifndef BENCH_ALLOCATIONS_H
#define BENCH_ALLOCATIONS_H

#include <cstddef>

namespace Orvane::Net::OvModelEventManager::Bench {

// How often this process has asked for memory: every call of malloc, calloc and
// realloc, those of `operator new` and of all libraries included.
//
// Threads: one.
struct Allocations {
    std::size_t all = 0;
    std::size_t ofXmlLibrary = 0;  // by way of its memory manager

    std::size_t outsideXmlLibrary() const { return all - ofXmlLibrary; }
};

Allocations allocationsSoFar();

// Starts the XML library, with a memory manager that counts. To be called
// before anything else does; may be called again.
void startXmlLibrary();

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
