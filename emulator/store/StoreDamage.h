#ifndef EMULATOR_STORE_STOREDAMAGE_H
#define EMULATOR_STORE_STOREDAMAGE_H

#include <cstdint>
#include <string>

#include "emulator/store/EventStore.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

inline constexpr const char* replaceStore =
    "Check the disk. Put a copy of the store back, or move the file and its "
    "gate away to begin with an empty one.";

// What the store in the file `path` says of a part of it that is not what was
// written.

// Of an event: the client can go on without its queue.
StoreError damagedEvent(const std::string& path, std::int64_t number);
StoreError missingEvent(const std::string& path, const std::string& server,
                        std::int64_t number);

// Of what the store keeps beside: nothing can be done with it.
StoreError damagedServer(const std::string& path, const std::string& server);
StoreError damagedClient(const std::string& path, const Identity& client);
StoreError damagedList(const std::string& path, const std::string& server);

// Of commits that are gone: what is left is in order.
StoreError lostCommits(const std::string& path, const std::string& server);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
