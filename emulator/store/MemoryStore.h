#ifndef EMULATOR_STORE_MEMORYSTORE_H
#define EMULATOR_STORE_MEMORYSTORE_H

#include <cstddef>
#include <map>
#include <mutex>
#include <set>

#include "emulator/store/EventStore.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// A store that lives in this object and ends with it; for tests, and for
// threads of one process.
//
// THROWS: never a StoreError.
class MemoryStore : public EventStore {
public:
    explicit MemoryStore(std::size_t portionOfAGet = portionBytes)
        : portion(portionOfAGet) {}

    ClientList registerClient(const Identity& caller) override;
    ClientList unregisterClient(const Identity& caller) override;
    ClientList sharedClients(const Identity& caller) override;
    ClientList putEvents(const Identity& caller,
                         std::string_view events) override;
    std::optional<PendingEvents> getEvents(const Identity& caller) override;
    void consume(const Identity& caller, std::int64_t upto) override;

    // How many events of a server are still kept.
    std::size_t eventCount(const std::string& serverId) const;

private:
    struct Event {
        std::string sender;
        std::string body;
    };
    struct Server {
        std::int64_t next = 1;
        std::map<std::string, std::int64_t> cursors;  // by client
        std::map<std::int64_t, Event> events;         // by number
        std::multiset<std::int64_t> positions;        // of all cursors
        ClientList clients;  // of the cursors; null when out of date

        ClientList list();
        void add(const std::string& clientId);
        void moveCursor(const std::string& clientId, std::int64_t upto);
        void stepOverOwn(const std::string& clientId);
        void trim();
    };

    // The server of a registered caller, else null.
    Server* serverOf(const Identity& caller);

    const std::size_t portion;
    mutable std::mutex mutex;
    std::map<std::string, Server> servers;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
