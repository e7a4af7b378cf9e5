#ifndef EMULATOR_MANAGER_SHAREDCLIENTSREPLIES_H
#define EMULATOR_MANAGER_SHAREDCLIENTSREPLIES_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include "emulator/store/EventStore.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// Writes the reply that lists the clients with which a caller shares its
// events, and keeps it for as long as the store hands out the same list, so
// that a reply of a thousand clients is written once.
//
// Threads: one at a time.
class SharedClientsReplies {
public:
    // The XML document that lists `clients` without the caller.
    std::shared_ptr<const std::string> reply(const Identity& caller,
                                             const ClientList& clients);

private:
    struct Server {
        ClientList clients;
        std::map<std::string, std::shared_ptr<const std::string>> texts;
    };

    std::map<std::string, Server> servers;
    std::size_t keptBytes = 0;  // of all texts since the last clearing
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
