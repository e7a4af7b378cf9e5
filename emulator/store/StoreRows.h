#ifndef EMULATOR_STORE_STOREROWS_H
#define EMULATOR_STORE_STOREROWS_H

#include <cstdint>
#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// What a store keeps of a server and of a client, and the checksum of each row
// (Checksum).

struct ServerRow {
    std::int64_t id = 0;
    std::int64_t next = 1;     // number of the next event
    std::int64_t epoch = 0;    // raised by every coming and going
    std::int64_t bytes = 0;    // of all events so far
    std::int64_t members = 0;  // the sum of memberMark over its clients

    std::int64_t checksum(std::string_view name) const;
};

// Summed up over the clients of a server it tells, whatever their order,
// whether one is missing, or one is there too many.
std::int64_t memberMark(std::string_view client);

// Sums of marks wrap around.
std::int64_t plus(std::int64_t marks, std::int64_t mark);
std::int64_t minus(std::int64_t marks, std::int64_t mark);

std::int64_t clientChecksum(std::int64_t server, std::string_view name,
                            std::int64_t cursor);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
