#ifndef EMULATOR_STORE_LEFTOVER_H
#define EMULATOR_STORE_LEFTOVER_H

#include <cstdint>

namespace Orvane::Net::OvModelEventManager::Emulator {

// What an operation leaves to be removed after it.
struct Leftover {
    std::int64_t server = 0;
    std::int64_t events = 0;  // at most as many
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
