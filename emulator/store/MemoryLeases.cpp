#include "emulator/store/MemoryLeases.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "emulator/store/OpenLeases.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using Clock = std::chrono::steady_clock;
using Name = std::pair<std::string, std::string>;

constexpr std::chrono::milliseconds rest{1};

}  // namespace

struct MemoryLeases::Table {
    struct Entry {
        const Lease* holder;
        Clock::time_point end;
        std::uint64_t generation;
    };

    // False if another getter has the lease, and is neither late nor left
    // behind by a fork.
    bool set(const Name& name, const Entry& entry) {
        const std::lock_guard lock(mutex);
        const auto [at, isNew] = entries.try_emplace(name, entry);
        if (!isNew && at->second.generation == entry.generation &&
            at->second.end > Clock::now()) {
            return false;
        }
        at->second = entry;
        return true;
    }

    void remove(const Name& name, const Lease* holder) {
        const std::lock_guard lock(mutex);
        const auto at = entries.find(name);
        if (at != entries.end() && at->second.holder == holder) {
            entries.erase(at);
        }
    }

    std::mutex mutex;
    std::map<Name, Entry> entries;
};

class MemoryLeases::Held : public Lease {
public:
    Held(std::shared_ptr<Table> owner, const Identity& caller)
        : table(std::move(owner)), name(caller.serverId, caller.clientId) {}
    ~Held() override { table->remove(name, this); }

    bool tryTake(std::chrono::milliseconds limit) {
        return table->set(name, {this, Clock::now() + limit,
                                 OpenLeases::instance().generation()});
    }

private:
    const std::shared_ptr<Table> table;
    const Name name;
};

MemoryLeases::MemoryLeases(LeaseTerms given)
    : terms(given), table(std::make_shared<Table>()) {}

std::shared_ptr<Lease> MemoryLeases::take(const Identity& caller) {
    const auto deadline = Clock::now() + terms.patience;
    auto lease = std::make_shared<Held>(table, caller);
    while (!lease->tryTake(terms.limit)) {
        if (Clock::now() >= deadline) {
            throw StoreError(std::string("Another getter has the events of "
                                         "this client: another part of this "
                                         "process holds the lease. ") +
                             leaseAdvice);
        }
        std::this_thread::sleep_for(rest);
    }
    return lease;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
