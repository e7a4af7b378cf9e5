#ifndef OVMEMCPPBINDING_UTIL_LIMITEDMEMORY_H
#define OVMEMCPPBINDING_UTIL_LIMITEDMEMORY_H

#include <atomic>
#include <cstddef>

#include <xercesc/framework/MemoryManager.hpp>

namespace Orvane::Net::OvModelEventManager::Util {

// Memory for the XML library, up to a limit.
//
// There is one object, which is never destroyed: exceptions, and what the XML
// library itself loses, may outlive everybody else.
//
// Threads: any number at once; the limit is set while no other thread
// allocates.
class LimitedMemory : public xercesc::MemoryManager {
public:
    static LimitedMemory& instance();

    // From now on so many bytes on top of what is held now.
    void limitGrowth(std::size_t bytes);

    // No limit at all, as at first.
    void liftLimit();

    // In bytes.
    std::size_t held() const;

    // THROWS: DomException beyond the limit, rather than the XML library's own
    // OutOfMemoryException: every application can catch it, and the XML
    // library tidies up after it. xercesc::OutOfMemoryException when there is
    // no memory at all.
    void* allocate(XMLSize_t size) override;

    // The same, behind so many bytes more in the same block that do not count:
    // what a caller needs to keep its accounts.
    void* allocateBehind(std::size_t uncounted, XMLSize_t size);

    void deallocate(void* block) override;
    xercesc::MemoryManager* getExceptionMemoryManager() override;

private:
    LimitedMemory();

    // Counts `size` as held, unless that is beyond the limit.
    bool take(std::size_t size);

    std::size_t growth;              // as granted, for the text
    std::size_t limit;               // of `total`
    std::atomic<std::size_t> total;  // never above `limit`
};

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
