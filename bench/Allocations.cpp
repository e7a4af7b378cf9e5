#include "bench/Allocations.h"

#include <cstdlib>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace {

std::size_t allocations = 0;
std::size_t xmlAllocations = 0;

}  // namespace

// The C library's functions, which those below stand in front of.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

__attribute__((visibility("default"))) void* malloc(std::size_t size) noexcept {
    ++allocations;
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t count,
                                                    std::size_t size) noexcept {
    ++allocations;
    return __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void* realloc(
    void* block, std::size_t size) noexcept {
    ++allocations;
    return __libc_realloc(block, size);
}
}

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

// Does what the XML library's own one does, and counts.
class CountingMemoryManager : public xercesc::MemoryManager {
public:
    xercesc::MemoryManager* getExceptionMemoryManager() override {
        return this;
    }
    void* allocate(XMLSize_t size) override {
        ++xmlAllocations;
        return ::operator new(size);
    }
    void deallocate(void* block) override { ::operator delete(block); }
};

}  // namespace

Allocations allocationsSoFar() {
    return {allocations, xmlAllocations};
}

void startXmlLibrary() {
    static CountingMemoryManager manager;
    static const bool started = [] {
        xercesc::XMLPlatformUtils::Initialize(
            xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr,
            &manager);
        return true;
    }();
    static_cast<void>(started);
}

}  // namespace Orvane::Net::OvModelEventManager::Bench
