#ifndef EMULATOR_STORE_LEASE_H
#define EMULATOR_STORE_LEASE_H

#include <chrono>

namespace Orvane::Net::OvModelEventManager::Emulator {

// The right to get what is queued for one client, which one getter has at a
// time: from before it reads the events until it has taken them out of the
// queue, or has given that up. It ends with the object, with its store, with
// its process, and for a getter that is too slow with a time limit.
class Lease {
public:
    Lease() = default;
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    virtual ~Lease() = default;
};

struct LeaseTerms {
    // Another getter may take a lease that is older.
    std::chrono::milliseconds limit{30000};

    // How long a getter waits for one that others have.
    std::chrono::milliseconds patience{10000};
};

// What a getter is told that has waited in vain.
inline constexpr const char* leaseAdvice =
    "Let it go on or end it, then repeat the call. Give every getter a client "
    "identity of its own.";

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
