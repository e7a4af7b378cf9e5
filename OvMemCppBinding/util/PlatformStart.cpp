#include "OvMemCppBinding/util/PlatformStart.h"

#include <xercesc/util/PlatformUtils.hpp>

namespace Orvane::Net::OvModelEventManager::Util {

using xercesc::XMLPlatformUtils;

// Without its memory manager the platform counts as not initialised, as before
// the first start and after the end.
void startPlatform(xercesc::PanicHandler* panicHandler,
                   xercesc::MemoryManager* memory) {
    try {
        XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale,
                                     nullptr, panicHandler, memory);
    } catch (...) {
        XMLPlatformUtils::fgMemoryManager = nullptr;
        throw;
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Util
