#ifndef EMULATOR_MANAGER_REQUESTHEADER_H
#define EMULATOR_MANAGER_REQUESTHEADER_H

#include <string>
#include <string_view>

#include "emulator/store/EventStore.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

enum class Operation {
    registerClient,
    unregisterClient,
    getSharedClients,
    getEvents,
    putEvents,
    getStatus
};

// As it stands in the header Operation-Name.
const char* operationName(Operation operation);

// What the header block of a request says to the manager: lines "name=value",
// each ended by CR LF, closed by an empty line. A value may hold '='. Headers
// that the manager has no use for are passed over.
struct RequestHeader {
    Operation operation = Operation::getStatus;
    Identity caller;  // empty for getStatus

    // By which a put is known when it is repeated: Log-Correlation-ID. Empty if
    // there is none, and for "ovmem.put", which the tool sends when it was
    // given none: that names no put.
    std::string correlation;

    // THROWS: Refusal (malformed) for a block of any other form, a name given
    // twice, another service, an unknown operation, or an operation on a client
    // without the headers that name it.
    static RequestHeader parse(std::string_view block);
};

// A request that came in one piece.
struct WholeRequest {
    std::string_view headerBlock;
    std::string_view body;

    // THROWS: Refusal (malformed) if no empty line ends the header block.
    static WholeRequest split(std::string_view text);
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
