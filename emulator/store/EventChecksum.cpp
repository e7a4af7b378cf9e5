#include "emulator/store/EventChecksum.h"

#include "emulator/store/Checksum.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

std::int64_t originChecksum(std::int64_t server, std::int64_t number,
                            std::string_view sender) {
    return Checksum(0).add(server).add(number).add(sender).value();
}

std::int64_t eventChecksum(std::int64_t origin, std::string_view body) {
    return Checksum(1).add(origin).add(body).value();
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
