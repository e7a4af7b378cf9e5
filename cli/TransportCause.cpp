#include "cli/TransportCause.h"

#include <OvMemCppBinding/platform/OvMemBinding.h>

namespace ovmem::cli {

std::string lastTransportError() {
    const char* text = nullptr;
    const bool answered = OvMem_GetLastError(&text) == 0;
    return answered && text != nullptr ? text : "";
}

}  // namespace ovmem::cli
