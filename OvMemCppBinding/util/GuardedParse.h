#ifndef OVMEMCPPBINDING_UTIL_GUARDEDPARSE_H
#define OVMEMCPPBINDING_UTIL_GUARDEDPARSE_H

#include <memory>

#include <xercesc/sax2/SAX2XMLReader.hpp>

#include "OvMemCppBinding/util/ParseMemory.h"
#include "OvMemCppBinding/util/ParseTime.h"
#include "OvMemCppBinding/util/ParseWatch.h"
#include "OvMemCppBinding/util/TreeBudget.h"

namespace Orvane::Net::OvModelEventManager::Util {

// What an XmlPlatformGuard adds to one parse: memory that goes back as a whole,
// and somebody who looks on.
//
// Ownership: outlives the reader that it watches.
//
// Threads: one at a time.
class GuardedParse {
public:
    // Null where the platform is not one that a guard started: nothing is
    // added then. `budget` is borrowed.
    static std::unique_ptr<GuardedParse> begin(TreeBudget& budget);

    // For the reader and what it reads; without a guard the platform's.
    static xercesc::MemoryManager& memoryOf(
        const std::unique_ptr<GuardedParse>& guarded);

    // Has the reader watched, unless the guard is gone.
    void watch(xercesc::SAX2XMLReader& reader);

private:
    explicit GuardedParse(TreeBudget& budget);

    ParseTime time;
    ParseMemory parseMemory;
    ParseWatch parseWatch;
    DoctypeRefusal doctypeRefusal;
};

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
