#ifndef OVMEMCPPBINDING_CLIENT_WIREFORMAT_H
#define OVMEMCPPBINDING_CLIENT_WIREFORMAT_H

#include <cstddef>

// The constants of an exchange with the service. docs/wire-format.md explains
// them and shows whole exchanges.

namespace Orvane::Net::OvModelEventManager::Client::WireFormat {

// Sizes in bytes.
inline constexpr std::size_t receiveBufferSize = 16384;
inline constexpr std::size_t bodyChunkSize = 4098;
inline constexpr std::size_t usualHeaderBlockSize = 512;  // room, not a limit

// What OvMem_Receive answers during the handshake and after it.
inline constexpr int statusSendBody = 19;
inline constexpr int statusSendNoBody = 20;
inline constexpr int statusEndOfReply = -1;

// Raised here, not by the transport: a text to be sent has no storage.
inline constexpr int statusNoText = -3002;

// The transport reported more than receiveBufferSize.
inline constexpr const char* oversizedChunk =
    "Reply chunk exceeds the receive buffer.";

// The header block.
inline constexpr const char* lineEnd = "\r\n";
inline constexpr const char* nullValue = "null";

inline constexpr const char* serverIdHeader = "Server-ID";
inline constexpr const char* clientIdHeader = "Client-ID";
inline constexpr const char* operationHeader = "Operation-Name";
inline constexpr const char* logCorrelationHeader = "Log-Correlation-ID";
inline constexpr const char* localeHeader = "Locale";
inline constexpr const char* serviceHeader = "Service-Name";
inline constexpr const char* serviceName = "OvMEMRequest";

// Kept with the header names; no request sends it.
inline constexpr const char* serviceNamespace =
    "com.orvane.schemas.soa._2006_03.base";

// Operations.
inline constexpr const char* registerClientOperation = "registerClient";
inline constexpr const char* unregisterClientOperation = "unregisterClient";
inline constexpr const char* getEventsOperation = "getEvents";
inline constexpr const char* putEventsOperation = "putEvents";
inline constexpr const char* getStatusOperation = "getStatus";
inline constexpr const char* getSharedClientsOperation = "getSharedClients";

// Bodies that carry no data but ask for a reply.
inline constexpr const char* registerClientProbe = "OvMEM register client";
inline constexpr const char* unregisterClientProbe = "OvMEM unregister client";
inline constexpr const char* getSharedClientsProbe =
    "OvMEM getClients Operation";
inline constexpr const char* getEventsProbe = "Get Events Request";
inline constexpr const char* getStatusProbe = "OvMEM Status check";

// Under which the operations are logged that take no identifier from the
// application.
inline constexpr const char* registerClientLogCorrelation =
    "OvMEMConnection.registerClient";
inline constexpr const char* unregisterClientLogCorrelation =
    "OvMEMConnection.unregisterClient";
inline constexpr const char* getSharedClientsLogCorrelation =
    "OvMEMConnection.getSharedClients";
inline constexpr const char* getStatusLogCorrelation =
    "OvMEMConnection.getStatus";

}  // namespace Orvane::Net::OvModelEventManager::Client::WireFormat

#endif
