#include "OvMemCppBinding/client/TransportError.h"

#include <algorithm>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/platform/OvMemBinding.h"

namespace Orvane::Net::OvModelEventManager::Client {

namespace {

TransportErrorKind kindOf(int status) {
    const auto* row =
        std::find_if(transportErrorTable.begin(), transportErrorTable.end(),
                     [status](const TransportErrorRow& candidate) {
                         return candidate.status == status;
                     });
    return row == transportErrorTable.end() ? TransportErrorKind::unrecognised
                                            : row->kind;
}

}  // namespace

std::string lastTransportErrorMessage() {
    const char* text = nullptr;
    const bool failed = OvMem_GetLastError(&text) != 0;
    if (text == nullptr) {
        return failed ? "Could not retrieve last error message."
                      : "No error message received";
    }
    // Deliberate: a text from a failed call is not trusted.
    // See docs/irregularities.md#message-of-a-failed-call.
    return failed ? std::string() : std::string(text);
}

void throwTransportError(int status) {
    const std::string message = lastTransportErrorMessage();
    switch (kindOf(status)) {
        case TransportErrorKind::connection:
            throw OvMEMConnectionException(message);
        case TransportErrorKind::protocol:
            throw OvMEMProtocolException(message);
        case TransportErrorKind::runtime:
            throw OvMEMRuntimeException(message);
        case TransportErrorKind::unrecognised:
            break;
    }
    throw OvMEMUnrecognisedException(message);
}

}  // namespace Orvane::Net::OvModelEventManager::Client
