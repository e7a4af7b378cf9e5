#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <malloc.h>

#include "tests/faults/FailingHeap.h"

// The heap functions of the C library, for the whole process: the program's
// own come first in the search of the dynamic linker. The work is done by the
// C library's, under the names that it keeps for this purpose.

using OvMemTest::FailingHeap;

namespace {

bool refuses() {
    const bool refused = FailingHeap::refuses();
    if (refused) {
        errno = ENOMEM;
    }
    return refused;
}

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

#pragma GCC visibility push(default)

void* malloc(std::size_t size) noexcept {
    void* block = refuses() ? nullptr : __libc_malloc(size);
    FailingHeap::taken(block);
    return block;
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    void* block = refuses() ? nullptr : __libc_calloc(count, size);
    FailingHeap::taken(block);
    return block;
}

void* realloc(void* block, std::size_t size) noexcept {
    if (refuses()) {
        return nullptr;
    }
    FailingHeap::givenBack(block);
    void* moved = __libc_realloc(block, size);
    FailingHeap::taken(moved);
    return moved;
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    void* block = refuses() ? nullptr : __libc_memalign(alignment, size);
    FailingHeap::taken(block);
    return block;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return memalign(alignment, size);
}

int posix_memalign(void** stored, std::size_t alignment,
                   std::size_t size) noexcept {
    void* block = memalign(alignment, size);
    if (block == nullptr) {
        return ENOMEM;
    }
    *stored = block;
    return 0;
}

void free(void* block) noexcept {
    FailingHeap::givenBack(block);
    __libc_free(block);
}

#pragma GCC visibility pop

}  // extern "C"
