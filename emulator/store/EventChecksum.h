#ifndef EMULATOR_STORE_EVENTCHECKSUM_H
#define EMULATOR_STORE_EVENTCHECKSUM_H

#include <cstdint>
#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// A stored event has two checksums (Checksum).

// All that is kept of an event but its body.
struct EventOrigin {
    std::int64_t server = 0;
    std::int64_t number = 0;
    std::string_view sender;
    std::int64_t start = 0;  // in the stream of all events of the server
    std::int64_t time = 0;   // of the put, in seconds
};

// Over the origin alone: so that a client can pass over an event of its own,
// and a put can look at the first one in the queue, without reading the body.
std::int64_t originChecksum(const EventOrigin& origin);

// Over all of it.
std::int64_t eventChecksum(std::int64_t origin, std::string_view body);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
