#ifndef EMULATOR_STORE_EVENTCHECKSUM_H
#define EMULATOR_STORE_EVENTCHECKSUM_H

#include <cstdint>
#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// A number by which a stored event is known to be what was put, at its place in
// its queue. It finds what a disk or another program has altered by accident;
// it is no protection against somebody who means it.
std::int64_t eventChecksum(std::int64_t server, std::int64_t number,
                           std::string_view body);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
