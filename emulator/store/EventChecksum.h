#ifndef EMULATOR_STORE_EVENTCHECKSUM_H
#define EMULATOR_STORE_EVENTCHECKSUM_H

#include <cstdint>
#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// A stored event has two checksums (Checksum).

// Over its place and who sent it: so that a client can pass over an event of
// its own without reading the body.
std::int64_t originChecksum(std::int64_t server, std::int64_t number,
                            std::string_view sender);

// Over all of it.
std::int64_t eventChecksum(std::int64_t origin, std::string_view body);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
