#ifndef EMULATOR_STORE_SQLITESTORE_H
#define EMULATOR_STORE_SQLITESTORE_H

#include <atomic>

#include <sys/types.h>

#include "emulator/store/EventStore.h"
#include "emulator/store/SqliteOptions.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

class SqliteSession;

// A store in a SQLite file, for many processes on one machine.
//
// Holds a SqliteSession for the process that it is in: a child made by fork
// opens its own, since it must not touch its parent's.
class SqliteStore : public EventStore {
public:
    // THROWS: StoreError when the file cannot be opened or is not a store.
    explicit SqliteStore(SqliteOptions options);
    ~SqliteStore() override;

    ClientList registerClient(const Identity& caller) override;
    ClientList unregisterClient(const Identity& caller) override;
    ClientList sharedClients(const Identity& caller) override;
    ClientList putEvents(const Identity& caller,
                         std::string_view events) override;
    std::optional<PendingEvents> getEvents(const Identity& caller) override;
    void consume(const Identity& caller, std::int64_t upto) override;

private:
    struct Opened;

    SqliteSession& session();
    template <typename Work>
    auto use(Work work);

    const SqliteOptions options;
    std::atomic<Opened*> opened;  // owned
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
