#include "emulator/store/StoreRows.h"

#include "emulator/store/Checksum.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

std::int64_t ServerRow::checksum(std::string_view name) const {
    return Checksum(2)
        .add(id)
        .add(name)
        .add(next)
        .add(epoch)
        .add(bytes)
        .add(members)
        .value();
}

std::int64_t memberMark(std::string_view client) {
    return Checksum(3).add(client).value();
}

std::int64_t plus(std::int64_t marks, std::int64_t mark) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(marks) +
                                     static_cast<std::uint64_t>(mark));
}

std::int64_t minus(std::int64_t marks, std::int64_t mark) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(marks) -
                                     static_cast<std::uint64_t>(mark));
}

std::int64_t clientChecksum(std::int64_t server, std::string_view name,
                            std::int64_t cursor) {
    return Checksum(4).add(server).add(name).add(cursor).value();
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
