#include "emulator/store/MemoryStore.h"

#include <algorithm>

namespace Orvane::Net::OvModelEventManager::Emulator {

ClientList MemoryStore::registerClient(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server& server = servers[caller.serverId];
    if (server.cursors.try_emplace(caller.clientId, server.next - 1).second) {
        server.clients.reset();
    }
    return server.list();
}

ClientList MemoryStore::unregisterClient(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server* server = serverOf(caller);
    if (!server) {
        return nullptr;
    }
    server->cursors.erase(caller.clientId);
    server->clients.reset();
    server->trim();
    return server->list();
}

ClientList MemoryStore::sharedClients(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server* server = serverOf(caller);
    return server ? server->list() : nullptr;
}

ClientList MemoryStore::putEvents(const Identity& caller,
                                  std::string_view events) {
    const std::lock_guard lock(mutex);
    Server* server = serverOf(caller);
    if (!server) {
        return nullptr;
    }
    ClientList clients = server->list();
    if (!events.empty() && clients->size() > 1) {
        server->events.emplace(server->next,
                               Event{caller.clientId, std::string(events)});
        ++server->next;
        server->stepOverOwn(caller.clientId);
        server->trim();
    }
    return clients;
}

std::optional<PendingEvents> MemoryStore::getEvents(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server* server = serverOf(caller);
    if (!server) {
        return std::nullopt;
    }
    PendingEvents pending;
    pending.upto = server->next - 1;
    auto event =
        server->events.upper_bound(server->cursors.at(caller.clientId));
    for (; event != server->events.end(); ++event) {
        if (event->second.sender != caller.clientId) {
            pending.text += event->second.body;
        }
    }
    return pending;
}

void MemoryStore::consume(const Identity& caller, std::int64_t upto) {
    const std::lock_guard lock(mutex);
    if (Server* server = serverOf(caller)) {
        std::int64_t& cursor = server->cursors.at(caller.clientId);
        cursor = std::max(cursor, upto);
        server->trim();
    }
}

std::size_t MemoryStore::eventCount(const std::string& serverId) const {
    const std::lock_guard lock(mutex);
    const auto server = servers.find(serverId);
    return server == servers.end() ? 0 : server->second.events.size();
}

MemoryStore::Server* MemoryStore::serverOf(const Identity& caller) {
    const auto server = servers.find(caller.serverId);
    if (server == servers.end() ||
        !server->second.cursors.contains(caller.clientId)) {
        return nullptr;
    }
    return &server->second;
}

ClientList MemoryStore::Server::list() {
    if (!clients) {
        auto ids = std::make_shared<std::vector<std::string>>();
        for (const auto& client : cursors) {
            ids->push_back(client.first);
        }
        clients = std::move(ids);
    }
    return clients;
}

// A client that only sends would otherwise keep its own events for ever.
void MemoryStore::Server::stepOverOwn(const std::string& clientId) {
    std::int64_t& cursor = cursors.at(clientId);
    auto event = events.upper_bound(cursor);
    while (event != events.end() && event->second.sender == clientId) {
        cursor = event->first;
        ++event;
    }
}

void MemoryStore::Server::trim() {
    std::int64_t consumed = next - 1;
    for (const auto& client : cursors) {
        consumed = std::min(consumed, client.second);
    }
    events.erase(events.begin(), events.upper_bound(consumed));
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
