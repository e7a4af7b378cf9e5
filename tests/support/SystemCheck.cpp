#include "tests/support/SystemCheck.h"

#include <xercesc/util/PlatformUtils.hpp>

namespace OvMemTest {

bool xmlPlatformRuns() {
    return xercesc::XMLPlatformUtils::fgMemoryManager != nullptr;
}

}  // namespace OvMemTest
