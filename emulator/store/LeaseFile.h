#ifndef EMULATOR_STORE_LEASEFILE_H
#define EMULATOR_STORE_LEASEFILE_H

#include <chrono>
#include <string>

#include <sys/types.h>

#include "emulator/store/EventStore.h"
#include "emulator/store/ForkLock.h"
#include "emulator/store/Lease.h"
#include "emulator/store/OpenLeases.h"
#include "emulator/store/SqliteOptions.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// A lease among all getters on one machine: a locked file beside the database,
// one for each identity, PATH-lease-<16 hexadecimal digits>. Its age is that of
// its last change. Two identities of one name only wait for each other.
//
// Whoever finds the lease older than the limit removes the file and makes
// another one. Nothing in it is for the disk to keep.
//
// The object stays where it is.
class LeaseFile : public Lease, private OpenLease {
public:
    // Waits until nobody else has the lease. `store` is what the lease belongs
    // to, for OpenLeases::endAll.
    //
    // THROWS: StoreError at the deadline, naming the process that has it; if
    // the file cannot be made or locked; if the name leads to a link or to
    // anything but a file of its own.
    LeaseFile(const SqliteOptions& options, const Identity& caller,
              Deadline deadline, const void* store);

    // Removes the file, unless another lease bears the name meanwhile.
    ~LeaseFile() override;

    static std::string pathOf(const std::string& database,
                              const Identity& caller);

private:
    enum class Attempt { taken, busy, again };

    Attempt attempt();
    Attempt open();
    Attempt lockNamed();
    Attempt removeExpired();
    void requireOwnFile() const;
    bool isExpired() const noexcept;
    void close() noexcept;

    void end() noexcept override;
    void closeCopy() noexcept override;

    const std::string path;
    const mode_t mode;
    const std::chrono::nanoseconds limit;
    int file = -1;
    bool held = false;  // the lease, not only the file
    int denials = 0;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
