#ifndef EMULATOR_STORE_MEMORYLEASES_H
#define EMULATOR_STORE_MEMORYLEASES_H

#include <memory>

#include "emulator/store/EventStore.h"
#include "emulator/store/Lease.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// The leases of a store in memory, among the threads of one process. After a
// fork the child has none of them.
//
// Threads: any.
class MemoryLeases {
public:
    explicit MemoryLeases(LeaseTerms terms);

    // Waits until no other getter of the same client has a lease.
    //
    // THROWS: StoreError after the patience of the terms.
    std::shared_ptr<Lease> take(const Identity& caller);

private:
    class Held;
    struct Table;

    const LeaseTerms terms;
    const std::shared_ptr<Table> table;  // that of the leases, too
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
