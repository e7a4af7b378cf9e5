#include "emulator/store/MemoryStore.h"

#include <utility>

#include "emulator/store/ClientListLimit.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

MemoryStore::MemoryStore() : MemoryStore(Options()) {}

ClientList MemoryStore::registerClient(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server& server = servers[caller.serverId];
    if (!server.cursors.contains(caller.clientId)) {
        server.add(caller.clientId);
        try {
            requireReadable(*server.list());
        } catch (...) {
            server.remove(caller.clientId);
            throw;
        }
    }
    return server.list();
}

ClientList MemoryStore::unregisterClient(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server* server = serverOf(caller);
    if (!server) {
        return nullptr;
    }
    server->remove(caller.clientId);
    server->trim();
    return server->list();
}

ClientList MemoryStore::sharedClients(const Identity& caller) {
    const std::lock_guard lock(mutex);
    Server* server = serverOf(caller);
    return server ? server->list() : nullptr;
}

ClientList MemoryStore::putEvents(const Identity& caller,
                                  std::string_view events,
                                  std::string_view correlation) {
    const std::lock_guard lock(mutex);
    Server* server = serverOf(caller);
    if (!server) {
        return nullptr;
    }
    ClientList clients = server->list();
    if (events.empty()) {
        return clients;
    }
    if (!dedupe || correlation.empty()) {
        put(*server, caller.clientId, events);
        return clients;
    }
    RecentPuts& puts = server->puts[caller.clientId];
    PutMark mark(correlation, events);
    if (!puts.contains(mark)) {
        puts.add(std::move(mark));
        try {
            put(*server, caller.clientId, events);
        } catch (...) {
            puts.takeBack();
            throw;
        }
        puts.forgetOld();
    }
    return clients;
}

std::optional<bool> MemoryStore::hasEvents(const Identity& caller) {
    const std::lock_guard lock(mutex);
    const Server* server = serverOf(caller);
    if (!server) {
        return std::nullopt;
    }
    auto event =
        server->events.upper_bound(server->cursors.at(caller.clientId));
    while (event != server->events.end() &&
           event->second.sender == caller.clientId) {
        ++event;
    }
    return event != server->events.end();
}

std::shared_ptr<Lease> MemoryStore::lease(const Identity& caller) {
    return leases.take(caller);
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

void MemoryStore::put(Server& server, const std::string& sender,
                      std::string_view text) {
    if (server.cursors.size() < 2) {
        return;
    }
    server.stepOverOwn(sender);
    if (limits.any()) {
        requireRoom(limits, server.backlog(clock()), text.size());
    }
    server.events.emplace(
        server.next, Event{sender, std::string(text), server.bytes, clock()});
    ++server.next;
    server.bytes += static_cast<std::int64_t>(text.size());
    server.stepOverOwn(sender);
    server.trim();
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
    const auto position = positions.emplace(next - 1, clientId).first;
    try {
        cursors.emplace(clientId, next - 1);
    } catch (...) {
        positions.erase(position);
        throw;
    }
    clients.reset();
}

void MemoryStore::Server::remove(const std::string& clientId) {
    const auto client = cursors.find(clientId);
    positions.erase({client->second, client->first});
    cursors.erase(client);
    puts.erase(clientId);
    clients.reset();
}

void MemoryStore::Server::moveCursor(const std::string& clientId,
                                     std::int64_t upto) {
    std::int64_t& cursor = cursors.at(clientId);
    if (cursor < upto && upto < next) {
        auto position = positions.extract({cursor, clientId});
        position.value().first = upto;
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

Backlog MemoryStore::Server::backlog(std::int64_t now) const {
    const auto& [cursor, clientId] = *positions.begin();
    Backlog result;
    result.clientId = clientId;
    result.events = next - 1 - cursor;
    const auto event = events.upper_bound(cursor);
    if (event != events.end()) {
        result.bytes = bytes - event->second.start;
        result.seconds = secondsSince(event->second.time, now);
    }
    return result;
}

void MemoryStore::Server::trim() {
    const auto end = positions.empty()
                         ? events.end()
                         : events.upper_bound(positions.begin()->first);
    events.erase(events.begin(), end);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
