#include "emulator/OvMemBinding/SpentPages.h"

#include <cstddef>
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

// Sound for any memory of the heap: each byte of a whole page within the text
// is the text's, so nothing else is in that page, no accounts of the allocator
// either. It reads as zeros afterwards, or, where the memory is shared, as
// before; nobody reads it.
void giveBackPages(std::string_view spent) noexcept {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const auto address = reinterpret_cast<std::uintptr_t>(spent.data());
    const std::size_t before = (page - address % page) % page;
    if (spent.size() < before + page) {
        return;
    }
    const std::size_t length = (spent.size() - before) / page * page;
    ::madvise(const_cast<char*>(spent.data()) + before, length, MADV_DONTNEED);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
