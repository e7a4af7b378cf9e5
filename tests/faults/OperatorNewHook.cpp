#include <cstdlib>
#include <new>

#include "tests/faults/FailingHeap.h"

// Only operator new fails: the sanitizers need malloc and its kin for
// themselves. Every C++ library of the process comes here, the XML library
// included; ICU, which takes its memory from malloc, does not.

using OvMemTest::FailingHeap;

#pragma GCC visibility push(default)

// What the XML library loses for want of memory is told apart from what the
// library under test loses by the sweep itself.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

void* operator new(std::size_t size) {
    void* block = FailingHeap::refuses() ? nullptr : std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    FailingHeap::taken(block);
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    void* block = FailingHeap::refuses() ? nullptr : std::malloc(size);
    FailingHeap::taken(block);
    return block;
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void operator delete(void* block) noexcept {
    FailingHeap::givenBack(block);
    std::free(block);
}

void operator delete[](void* block) noexcept {
    operator delete(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    operator delete(block);
}

#pragma GCC visibility pop
