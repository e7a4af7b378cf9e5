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
// Ownership: the connection keeps copies of its identity and its locale, and
// nothing else of the caller's. Results are written into the caller's objects.
// What is only read is taken by non-const reference all the same, and stays as
// it was: `serverId`, `clientId`, `locale`, `logCorrelationId`, and the
// `events` of putEvents.
//
// Threads: none of it is locked. Use a connection on one thread at a time, and
// do not construct or destroy connections while another thread constructs,
// destroys or uses one: they share the XML parser platform of the process.
// Whether two connections may be used on two threads at once is up to the
// transport, which they share too; the emulator's keeps one exchange a thread.
//
// THROWS: from every operation, besides what is said there,
//   - the client exceptions of Exceptions.h, by value, where the transport,
//     the service or the conversion of the headers fails;
//   - util/DomException for a reply that is not the expected XML; by then the
//     service has carried the request out (getStatus reads no XML);
//   - std::bad_alloc and the XML library's own exceptions for want of memory.
// docs/errors.md lists them with their texts. After any of them the connection
// can be used again, unless the transport has written past its buffer ("Reply
// chunk exceeds the receive buffer."): then stop the process.
class OVMEM_EXPORT OvMEMConnection {
public:
    // Construction and copying.
    //
    // The constructor starts the XML parser platform unless a connection has
    // done so already; it does not touch the transport. The first connection
    // destroyed ends what a connection started, also under the connections
    // still alive, whose replies can then not be read until another connection
    // is constructed, unless an XmlPlatformGuard or the application itself
    // holds the platform
    // (docs/irregularities.md#first-destroyed-ends-the-platform). A platform
    // that has no memory to start throws the XML library's own exceptions, or
    // ends the process (docs/errors.md#from-below).
    //
    // A copy has the same identity and locale, takes the transport for started
    // if its source did, and starts nothing. The destructor does not end the
    // transport.

    OvMEMConnection();
    OvMEMConnection(const OvMEMConnection& other);
    OvMEMConnection& operator=(const OvMEMConnection& other);
    ~OvMEMConnection();

    // Registration.
    //
    // Each operation appends the identifiers of the other clients that share
    // the events, as the service lists them, to `sharedClients`; what the
    // vector held stays in front. An operation that throws appends nothing.

    // Stores the identity, then registers it with the service. An empty
    // `locale` is not sent. The identity stays stored when the operation
    // throws (docs/irregularities.md#identity-before-acceptance).
    void registerClient(std::string& serverId, std::string& clientId,
                        std::string& locale,
                        std::vector<std::string>& sharedClients);

    // Unregisters and forgets the server and client identity, also when a
    // client exception says that the service was not reached or did not agree.
    // Any other exception leaves it stored, a DomException too, although the
    // service has then carried the request out. The locale stays in any case.
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
    // now. The events are handed out once: the service may forget them as soon
    // as they are in `events`. When the second step fails, `events` is already
    // new and `sharedClients` is empty; look at `events` also after an
    // exception (docs/irregularities.md#two-exchanges).
    void getEvents(std::string& events, std::vector<std::string>& sharedClients,
                   std::string& logCorrelationId);

    // Hands `events` to the service and appends the clients that share them
    // to `sharedClients`. After a DomException the service has the events;
    // after another exception it may have them. The transport carries texts: a
    // NUL byte ends the piece of `events` in which it stands
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
