#ifndef EMULATOR_MANAGER_LIMITS_H
#define EMULATOR_MANAGER_LIMITS_H

#include <cstddef>

namespace Orvane::Net::OvModelEventManager::Emulator {

// How large a request may be, in bytes. A body must fit into one row of the
// store, which holds a little less than 1000000000.
struct Limits {
    std::size_t headerBlock = 64 * 1024;
    std::size_t body = 512 * 1024 * 1024;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
