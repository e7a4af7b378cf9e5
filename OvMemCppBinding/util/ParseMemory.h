#ifndef OVMEMCPPBINDING_UTIL_PARSEMEMORY_H
#define OVMEMCPPBINDING_UTIL_PARSEMEMORY_H

#include <cstddef>

#include <xercesc/framework/MemoryManager.hpp>

#include "OvMemCppBinding/util/LimitedMemory.h"
#include "OvMemCppBinding/util/ParseTime.h"

namespace Orvane::Net::OvModelEventManager::Util {

// The memory of one reader. Cut short by an exception, the XML library loses
// blocks; with the reader's memory all of them go back.
//
// Exceptions of the XML library, which outlive the reader, have their memory
// from the source, as has everything that belongs to the platform.
//
// Ownership: `source` and `time` are borrowed. The object lives from before
// the reader is created until after it is deleted.
//
// Threads: one at a time, as the reader.
class ParseMemory : public xercesc::MemoryManager {
public:
    ParseMemory(LimitedMemory& source, ParseTime& time);

    // Gives back what is left.
    ~ParseMemory() override;

    ParseMemory(const ParseMemory&) = delete;
    ParseMemory& operator=(const ParseMemory&) = delete;

    // THROWS: what the source throws; DomException when the time is over, once.
    void* allocate(XMLSize_t size) override;
    void deallocate(void* block) override;
    xercesc::MemoryManager* getExceptionMemoryManager() override;

private:
    // Stands before every block and links it with the others, in a ring. It
    // does not count as memory of the XML library.
    struct alignas(std::max_align_t) Link {
        Link* previous;
        Link* next;
    };

    LimitedMemory& source;
    ParseTime& time;
    Link ring;  // no block of its own
};

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
