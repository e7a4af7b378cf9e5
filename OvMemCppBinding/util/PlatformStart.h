#ifndef OVMEMCPPBINDING_UTIL_PLATFORMSTART_H
#define OVMEMCPPBINDING_UTIL_PLATFORMSTART_H

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PanicHandler.hpp>

namespace Orvane::Net::OvModelEventManager::Util {

// Initialises the XML parser platform, or adds one to the count of those who
// have. The arguments are borrowed for the life of the platform; only the first
// call's are looked at, and without them the XML library takes its own.
//
// THROWS: what the XML library throws. From then on it takes itself for
// started, without being so; no document can be parsed any more in this
// process, and to try it is a DomException.
void startPlatform(xercesc::PanicHandler* panicHandler = nullptr,
                   xercesc::MemoryManager* memory = nullptr);

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
