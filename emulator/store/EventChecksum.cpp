#include "emulator/store/EventChecksum.h"

#include "emulator/store/Checksum.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

std::int64_t originChecksum(const EventOrigin& origin) {
    return Checksum(0)
        .add(origin.server)
        .add(origin.number)
        .add(origin.sender)
        .add(origin.start)
        .add(origin.time)
        .value();
}

std::int64_t eventChecksum(std::int64_t origin, std::string_view body) {
    return Checksum(1).add(origin).add(body).value();
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
