#ifndef EMULATOR_STORE_SQLITESTORE_H
#define EMULATOR_STORE_SQLITESTORE_H

#include <memory>

#include <sys/types.h>

#include "emulator/store/EventStore.h"
#include "emulator/store/SqliteOptions.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

class SqliteSession;

// A store in a SQLite file, for many processes on one machine and any thread of
// them.
//
// A child made by fork opens the file anew at its first call: SQLite's locks
// belong to the process that took them, and a child that went on with the
// connection of its parent would hold none.
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
    // Runs `work` with the session of this process, and lets out nothing but
    // StoreError and std::bad_alloc.
    template <typename Work>
    auto use(Work work);

    SqliteSession& sessionOfThisProcess();

    const SqliteOptions options;
    pid_t process = 0;  // whose session it is
    std::unique_ptr<SqliteSession> session;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
