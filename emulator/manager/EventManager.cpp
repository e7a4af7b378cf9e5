#include "emulator/manager/EventManager.h"

#include <utility>

#include "emulator/manager/Refusal.h"
#include "emulator/manager/SharedClientsReplies.h"
#include "emulator/manager/ShownText.h"
#include "emulator/manager/XmlText.h"

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

Reply textReply(std::string text) {
    return {std::make_shared<const std::string>(std::move(text)), {}};
}

}  // namespace

Reply EventManager::answer(const RequestHeader& header, std::string_view body) {
    const Identity& caller = header.caller;
    switch (header.operation) {
        case Operation::registerClient:
            requireXmlText(caller.clientId);
            return sharedClients(header, store.registerClient(caller));
        case Operation::unregisterClient:
            return sharedClients(header, store.unregisterClient(caller));
        case Operation::getSharedClients:
            return sharedClients(header, store.sharedClients(caller));
        case Operation::putEvents:
            return sharedClients(header, store.putEvents(caller, body));
        case Operation::getEvents:
            if (auto pending = store.getEvents(caller)) {
                const bool any = !pending->text.empty();
                Reply reply = textReply(std::move(pending->text));
                if (any) {
                    reply.consumption = Consumption{caller, pending->upto};
                }
                return reply;
            }
            throw notRegistered(header);
        case Operation::getStatus:
            break;
    }
    return textReply(std::string(body));
}

void EventManager::complete(const Consumption& consumption) {
    store.consume(consumption.caller, consumption.upto);
}

Reply EventManager::sharedClients(const RequestHeader& header,
                                  const ClientList& clients) {
    if (!clients) {
        throw notRegistered(header);
    }
    return {replies.reply(header.caller, clients), {}};
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
