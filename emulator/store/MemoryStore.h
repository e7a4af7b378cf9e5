#ifndef EMULATOR_STORE_MEMORYSTORE_H
#define EMULATOR_STORE_MEMORYSTORE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "emulator/store/EventStore.h"
#include "emulator/store/MemoryLeases.h"
#include "emulator/store/QueueLimits.h"
#include "emulator/store/RecentPuts.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// A store that lives in this object and ends with it; for tests, and for
// threads of one process.
//
// THROWS: StoreError for a lease that another getter has, ClientListTooLong.
class MemoryStore : public EventStore {
public:
    using Clock = std::int64_t (*)();  // real time in seconds

    struct Options {
        std::size_t portion = portionBytes;  // of one get
        bool dedupe = false;                 // of puts that bear a correlation
        LeaseTerms lease{};
        QueueLimits limits{};
        Clock clock = &secondsNow;
    };

    MemoryStore();
    explicit MemoryStore(const Options& options)
        : portion(options.portion),
          dedupe(options.dedupe),
          limits(options.limits),
          clock(options.clock),
          leases(options.lease) {}

    ClientList registerClient(const Identity& caller) override;
    ClientList unregisterClient(const Identity& caller) override;
    ClientList sharedClients(const Identity& caller) override;
    ClientList putEvents(const Identity& caller, std::string_view events,
                         std::string_view correlation = {}) override;
    std::optional<bool> hasEvents(const Identity& caller) override;
    std::shared_ptr<Lease> lease(const Identity& caller) override;
    std::optional<PendingEvents> getEvents(const Identity& caller) override;
    void consume(const Identity& caller, std::int64_t upto) override;

    // How many events of a server are still kept.
    std::size_t eventCount(const std::string& serverId) const;

private:
    struct Event {
        std::string sender;
        std::string body;
        std::int64_t start = 0;  // in the stream of all events of the server
        std::int64_t time = 0;
    };
    struct Server {
        std::int64_t next = 1;
        std::int64_t bytes = 0;                       // of all events so far
        std::map<std::string, std::int64_t> cursors;  // by client
        std::map<std::int64_t, Event> events;         // by number
        std::set<std::pair<std::int64_t, std::string>> positions;  // by cursor
        std::map<std::string, RecentPuts> puts;                    // by client
        ClientList clients;  // of the cursors; null when out of date

        ClientList list();
        void add(const std::string& clientId);
        void remove(const std::string& clientId);
        void moveCursor(const std::string& clientId, std::int64_t upto);
        void stepOverOwn(const std::string& clientId);
        Backlog backlog(std::int64_t now) const;
        void trim();
    };

    // The server of a registered caller, else null.
    Server* serverOf(const Identity& caller);

    void put(Server& server, const std::string& sender, std::string_view text);

    const std::size_t portion;
    const bool dedupe;
    const QueueLimits limits;
    const Clock clock;
    MemoryLeases leases;
    mutable std::mutex mutex;
    std::map<std::string, Server> servers;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
