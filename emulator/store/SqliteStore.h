#ifndef EMULATOR_STORE_SQLITESTORE_H
#define EMULATOR_STORE_SQLITESTORE_H

#include <memory>
#include <optional>

#include "emulator/store/EventStore.h"
#include "emulator/store/Leftover.h"
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
    ClientList putEvents(const Identity& caller, std::string_view events,
                         std::string_view correlation = {}) override;
    std::optional<bool> hasEvents(const Identity& caller) override;
    std::shared_ptr<Lease> lease(const Identity& caller) override;
    std::optional<PendingEvents> getEvents(const Identity& caller) override;
    void consume(const Identity& caller, std::int64_t upto) override;

private:
    enum class IfAbsent { nothing, make };

    // Runs `work` with the session of this process, and lets out nothing but
    // StoreError and std::bad_alloc. Where there is no store, and none is to be
    // made, the result is one without a value.
    template <typename Work>
    auto use(Work work, IfAbsent ifAbsent = IfAbsent::nothing);

    // The same, and then removes what nobody waits for any more, as the session
    // told after this work or an earlier one. The work is done whatever becomes
    // of that.
    enum class Tidying { now, later };
    template <typename Work>
    auto useAndTidy(Work work, Tidying tidying,
                    IfAbsent ifAbsent = IfAbsent::nothing);

    // What this call has left, and what was put off. True if something is due.
    bool takeOver(const std::optional<Leftover>& leftover,
                  Tidying tidying) noexcept;

    void tidy(Deadline limit) noexcept;

    // A step of it. False if nothing is left, or it cannot be done now.
    bool tidyOnce() noexcept;
    void recoverAfterTidying(int sqliteError) noexcept;

    Deadline deadline() const;
    void dropIfStuck() noexcept;

    // True if it is worth while to try once more.
    bool recoverFrom(int sqliteError);

    void closeNow() noexcept override;
    void closeTidily() noexcept override;

    const SqliteOptions options;
    std::unique_ptr<SqliteSession> session;  // null while the file is closed
    std::optional<Leftover> putOff;          // to the next call
    std::optional<Leftover> due;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
