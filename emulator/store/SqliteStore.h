#ifndef EMULATOR_STORE_SQLITESTORE_H
#define EMULATOR_STORE_SQLITESTORE_H

#include <memory>

#include "emulator/store/EventStore.h"
#include "emulator/store/OpenStores.h"
#include "emulator/store/SqliteOptions.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

class SqliteSession;

// A store in a SQLite file, for many processes on one machine and any thread of
// them.
//
// The file is open from the first call that needs it. It is closed before a
// fork and when the process ends (OpenStores), and opened again by the next
// call.
class SqliteStore : public EventStore, private OpenStore {
public:
    // Opens nothing yet.
    //
    // THROWS: StoreError when another thread keeps everybody waiting.
    explicit SqliteStore(SqliteOptions options);
    ~SqliteStore() override;

    // A store that is not there is not made, but the place is looked at.
    //
    // THROWS: StoreError when the file cannot be opened or is not a store.
    void open() override;

    ClientList registerClient(const Identity& caller) override;
    ClientList unregisterClient(const Identity& caller) override;
    ClientList sharedClients(const Identity& caller) override;
    ClientList putEvents(const Identity& caller,
                         std::string_view events) override;
    std::optional<PendingEvents> getEvents(const Identity& caller) override;
    void consume(const Identity& caller, std::int64_t upto) override;

private:
    enum class IfAbsent { nothing, make };

    // Runs `work` with the session of this process, and lets out nothing but
    // StoreError and std::bad_alloc. Where there is no store, and none is to be
    // made, the result is one without a value.
    template <typename Work>
    auto use(Work work, IfAbsent ifAbsent = IfAbsent::nothing);

    Deadline deadline() const;
    void dropIfStuck() noexcept;

    // True if it is worth while to try once more.
    bool recoverFrom(int sqliteError);

    void closeNow() noexcept override;
    void closeTidily() noexcept override;

    const SqliteOptions options;
    std::unique_ptr<SqliteSession> session;  // null while the file is closed
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
