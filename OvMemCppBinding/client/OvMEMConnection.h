#ifndef OVMEMCPPBINDING_CLIENT_OVMEMCONNECTION_H
#define OVMEMCPPBINDING_CLIENT_OVMEMCONNECTION_H

#include <string>
#include <vector>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Client {

class OvMEMRequest;

// A connection to a Model Event Manager: the one class an application needs.
//
// It holds the identity under which the application is registered, starts the
// transport with the first request, and turns each operation into one
// exchange (getEvents: two) with the service.
//
//     OvMEMConnection connection;
//     std::string server = "plant", client = "pump", locale = "en_GB";
//     std::vector<std::string> shared;
//     connection.registerClient(server, client, locale, shared);
//     std::string events, correlation = "night-run";
//     connection.getEvents(events, shared, correlation);
//     connection.unregisterClient(shared);
//
// Ownership: the connection keeps copies of its identity and nothing else of
// the caller's. Results are written into the caller's objects.
//
// Threads: none of it is locked. Use a connection on one thread at a time, and
// do not construct or destroy connections while another thread constructs,
// destroys or uses one: they share the XML parser platform of the process.
//
// THROWS: the family of Exceptions.h, and util/DomException for a reply that
// is not the expected XML; docs/errors.md lists every text. A failed operation
// leaves the connection usable.
class OVMEM_EXPORT OvMEMConnection {
public:
    // Construction and copying.
    //
    // The constructor starts the XML parser platform unless it runs already;
    // it does not touch the transport. The first connection destroyed ends
    // the platform, also under the connections still alive, whose replies can
    // then not be read until another connection is constructed
    // (docs/irregularities.md#first-destroyed-ends-the-platform).
    //
    // A copy has the same identity and takes the transport for started if its
    // source did. The destructor does not end the transport.

    OvMEMConnection();
    OvMEMConnection(const OvMEMConnection& other);
    OvMEMConnection& operator=(const OvMEMConnection& other);
    ~OvMEMConnection();

    // Registration.
    //
    // Each operation appends the identifiers of the other clients that share
    // the events to `sharedClients`; what the vector held stays in front.

    // Stores the identity, then registers it with the service. An empty
    // `locale` is not sent. The identity stays stored when the service
    // refuses it (docs/irregularities.md#identity-before-acceptance).
    void registerClient(std::string& serverId, std::string& clientId,
                        std::string& locale,
                        std::vector<std::string>& sharedClients);

    // Unregisters and forgets the server and client identity, whether the
    // service agreed or not.
    //
    // THROWS: client exceptions as a plain Exception that keeps type code and
    // message (docs/irregularities.md#plain-exception).
    void unregisterClient(std::vector<std::string>& sharedClients);

    // Asks who shares the events now.
    //
    // THROWS: without a registered client a *pointer* to a new
    // OvMEMProtocolException, type code -2, which the catcher deletes
    // (docs/irregularities.md#pointer-throw).
    void getSharedClients(std::vector<std::string>& sharedClients);

    // Events.
    //
    // The events travel as one opaque text in each direction. Both operations
    // send `logCorrelationId`, by which the request can be found in the logs.
    //
    // THROWS: without a registered client OvMEMProtocolException, type code
    // -2, before anything is sent or changed.

    // Replaces `events` by what the service holds for this client, empty if
    // nothing, and then `sharedClients` by the clients that share the events
    // now. When the second step fails, `events` is already new and
    // `sharedClients` is empty.
    void getEvents(std::string& events, std::vector<std::string>& sharedClients,
                   std::string& logCorrelationId);

    // Hands `events` to the service and appends the clients that share them
    // to `sharedClients`. The transport carries texts: a NUL byte ends the
    // piece of `events` in which it stands
    // (docs/irregularities.md#nul-cuts-the-text).
    void putEvents(std::string& events, std::vector<std::string>& sharedClients,
                   std::string& logCorrelationId);

    // Service check.

    // 0 when the service echoed the probe, -2 when it answered anything else.
    // Needs no registration.
    //
    // THROWS: OvMEMConnectionException, type code -1, in place of every client
    // exception.
    int getStatus();

private:
    void setRequestHeader(OvMEMRequest& request, std::string& operationName,
                          std::string& logCorrelationId, bool withIdentity);
    bool isClientRegistered();
    void initOvMem();  // Calls OvMem_Init unless started.
    void termOvMem();  // Calls OvMem_Term if started.

    std::string serverId;  // empty while not registered
    std::string clientId;
    bool reserved;      // copied, never read: keeps the layout
    bool ovMemStarted;  // the transport was started through this object
    std::string locale;
};

}  // namespace Client
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
