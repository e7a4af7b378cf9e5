#ifndef OVMEMCPPBINDING_CLIENT_TRANSPORTERROR_H
#define OVMEMCPPBINDING_CLIENT_TRANSPORTERROR_H

#include <array>
#include <string>

// The one door from a transport status to a client exception.

namespace Orvane::Net::OvModelEventManager::Client {

enum class TransportErrorKind { connection, protocol, runtime, unrecognised };

struct TransportErrorRow {
    int status;
    TransportErrorKind kind;
};

// Every status the client knows; any other one is `unrecognised`.
inline constexpr std::array<TransportErrorRow, 14> transportErrorTable{{
    {1001, TransportErrorKind::connection},
    {1002, TransportErrorKind::protocol},
    {1003, TransportErrorKind::runtime},
    {-751, TransportErrorKind::protocol},
    {-3099, TransportErrorKind::protocol},
    {-3017, TransportErrorKind::protocol},
    {-3016, TransportErrorKind::runtime},
    {-3010, TransportErrorKind::runtime},
    {-3009, TransportErrorKind::runtime},
    {-3001, TransportErrorKind::connection},
    {-2999, TransportErrorKind::connection},
    {-2998, TransportErrorKind::connection},
    {-2997, TransportErrorKind::connection},
    {-2996, TransportErrorKind::connection},
}};

// What the transport says about its last error, or a text that says why there
// is none. Calls OvMem_GetLastError.
std::string lastTransportErrorMessage();

// THROWS: the exception of the table for `status`, always; type code 0, the
// transport's message.
[[noreturn]] void throwTransportError(int status);

}  // namespace Orvane::Net::OvModelEventManager::Client

#endif
