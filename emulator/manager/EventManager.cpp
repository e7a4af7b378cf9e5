#include "emulator/manager/EventManager.h"

#include <utility>

#include "emulator/manager/LimitRefusal.h"
#include "emulator/manager/Refusal.h"
#include "emulator/manager/SharedClientsReplies.h"
#include "emulator/manager/ShownText.h"
#include "emulator/manager/XmlText.h"
#include "emulator/store/ClientListLimit.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// Such an identity would spoil the replies to all the others.
void requireXmlText(const std::string& clientId) {
    if (!isXmlText(clientId)) {
        throw Refusal(Status::malformed,
                      "The client identity " + shown(clientId) +
                          " cannot stand in an XML reply. Use UTF-8 without "
                          "control characters for it.");
    }
}

Refusal notRegistered(const RequestHeader& header) {
    return Refusal(Status::notRegistered,
                   "The client " + shown(header.caller.clientId) +
                       " is not registered with the server " +
                       shown(header.caller.serverId) +
                       ". Call registerClient before " +
                       operationName(header.operation) + ".");
}

Refusal listTooLong(const Identity& caller) {
    return Refusal(Status::malformed,
                   "The client " + shown(caller.clientId) +
                       " cannot be registered with the server " +
                       shown(caller.serverId) +
                       ": the list of its clients would become too long to be "
                       "read. Unregister clients that are no longer used, or "
                       "use another server.");
}

Reply textReply(std::string text) {
    return {std::make_shared<const std::string>(std::move(text)), {}};
}

}  // namespace

Reply EventManager::answer(const RequestHeader& header, std::string_view body) {
    const Identity& caller = header.caller;
    switch (header.operation) {
        case Operation::registerClient:
            requireXmlText(caller.clientId);
            try {
                return sharedClients(header, store.registerClient(caller));
            } catch (const ClientListTooLong&) {
                throw listTooLong(caller);
            }
        case Operation::unregisterClient:
            return sharedClients(header, store.unregisterClient(caller));
        case Operation::getSharedClients:
            return sharedClients(header, store.sharedClients(caller));
        case Operation::putEvents:
            return putEvents(header, body);
        case Operation::getEvents:
            return events(header);
        case Operation::getStatus:
            break;
    }
    return textReply(std::string(body));
}

void EventManager::complete(const Consumption& consumption) {
    store.consume(consumption.caller, consumption.upto);
}

// What is read before the lease is taken may be gone by then.
Reply EventManager::events(const RequestHeader& header) {
    const std::optional<bool> waiting = store.hasEvents(header.caller);
    if (!waiting) {
        throw notRegistered(header);
    }
    if (!*waiting) {
        return textReply("");
    }
    auto lease = store.lease(header.caller);
    auto pending = store.getEvents(header.caller);
    if (!pending) {
        throw notRegistered(header);
    }
    const bool any = !pending->text.empty();
    Reply reply = textReply(std::move(pending->text));
    if (any) {
        reply.consumption =
            Consumption{header.caller, pending->upto, std::move(lease)};
    }
    return reply;
}

Reply EventManager::putEvents(const RequestHeader& header,
                              std::string_view events) {
    try {
        return sharedClients(
            header, store.putEvents(header.caller, events, header.correlation));
    } catch (const QueueLimitPassed& passed) {
        throw limitRefusal(passed, header.caller.serverId);
    }
}

Reply EventManager::sharedClients(const RequestHeader& header,
                                  const ClientList& clients) {
    if (!clients) {
        throw notRegistered(header);
    }
    return {replies.reply(header.caller, clients), {}};
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
