#include "emulator/store/MemoryStore.h"

#include <utility>

namespace Orvane::Net::OvModelEventManager::Emulator {

ClientList MemoryStore::registerClient(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server& server = servers[caller.serverId];
    if (!server.cursors.contains(caller.clientId)) {
        server.add(caller.clientId);
    }
    return server.list();
}

ClientList MemoryStore::unregisterClient(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server* server = serverOf(caller);
    if (!server) {
        return nullptr;
    }
    const auto client = server->cursors.find(caller.clientId);
    server->positions.erase(server->positions.find(client->second));
    server->cursors.erase(client);
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
        const std::string& body = event->second.body;
        if (event->second.sender == caller.clientId) {
            continue;
        }
        if (!pending.text.empty() &&
            pending.text.size() + body.size() > portion) {
            pending.upto = event->first - 1;
            break;
        }
        pending.text += body;
    }
    return pending;
}

void MemoryStore::consume(const Identity& caller, std::int64_t upto) {
    const std::lock_guard lock(mutex);
    if (Server* server = serverOf(caller)) {
        server->moveCursor(caller.clientId, upto);
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

void MemoryStore::Server::add(const std::string& clientId) {
    const auto position = positions.insert(next - 1);
    try {
        cursors.emplace(clientId, next - 1);
    } catch (...) {
        positions.erase(position);
        throw;
    }
    clients.reset();
}

void MemoryStore::Server::moveCursor(const std::string& clientId,
                                     std::int64_t upto) {
    std::int64_t& cursor = cursors.at(clientId);
    if (cursor < upto) {
        auto position = positions.extract(cursor);
        position.value() = upto;
        positions.insert(std::move(position));
        cursor = upto;
    }
}

// A client that only sends would otherwise keep its own events for ever.
void MemoryStore::Server::stepOverOwn(const std::string& clientId) {
    std::int64_t reached = cursors.at(clientId);
    auto event = events.upper_bound(reached);
    while (event != events.end() && event->second.sender == clientId) {
        reached = event->first;
        ++event;
    }
    moveCursor(clientId, reached);
}

void MemoryStore::Server::trim() {
    const auto end = positions.empty() ? events.end()
                                       : events.upper_bound(*positions.begin());
    events.erase(events.begin(), end);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
