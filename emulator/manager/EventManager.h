#ifndef EMULATOR_MANAGER_EVENTMANAGER_H
#define EMULATOR_MANAGER_EVENTMANAGER_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "emulator/manager/RequestHeader.h"
#include "emulator/store/EventStore.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

class SharedClientsReplies;

// What leaves the caller's queue once it has the whole reply. Until then, as
// long as this exists, nobody else gets it.
struct Consumption {
    Identity caller;
    std::int64_t upto = 0;
    std::shared_ptr<Lease> lease;
};

struct Reply {
    std::shared_ptr<const std::string> text;  // never null
    std::optional<Consumption> consumption;
};

// The Model Event Manager: one request in, one reply out, over a store.
//
// Clients that registered under the same server identity share events. What
// one of them puts is queued for all the others registered at that moment. A
// get answers with all that is queued for the caller, in commit order, and
// takes nothing away: the next get begins with the same bytes until complete
// says that the client has them. It is made for one getter of a client at a
// time; the others wait.
//
// It keeps nothing itself and is made for the call at hand.
class EventManager {
public:
    // Both must outlive the manager.
    EventManager(EventStore& eventStore, SharedClientsReplies& sharedReplies)
        : store(eventStore), replies(sharedReplies) {}

    // Does what the request asks; a put or a registration is committed when
    // this returns.
    //
    // THROWS: Refusal, StoreError.
    Reply answer(const RequestHeader& header, std::string_view body);

    // THROWS: StoreError.
    void complete(const Consumption& consumption);

private:
    Reply events(const RequestHeader& header);
    Reply putEvents(const RequestHeader& header, std::string_view events);
    Reply sharedClients(const RequestHeader& header, const ClientList& clients);

    EventStore& store;
    SharedClientsReplies& replies;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
