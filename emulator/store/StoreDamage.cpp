#include "emulator/store/StoreDamage.h"

#include "emulator/manager/ShownText.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr const char* withoutQueue =
    "the file is damaged. Check the disk. To go on without what is queued, "
    "unregister the client and register it again.";

StoreError damaged(const std::string& path, const std::string& what) {
    return StoreError("What the event store '" + path + "' keeps of " + what +
                      " is not what was written: the file is damaged. " +
                      replaceStore);
}

}  // namespace

StoreError damagedEvent(const std::string& path, std::int64_t number) {
    return StoreError("Event " + std::to_string(number) +
                      " of the event store '" + path +
                      "' is not what was put: " + withoutQueue);
}

StoreError missingEvent(const std::string& path, const std::string& server,
                        std::int64_t number) {
    return StoreError("Event " + std::to_string(number) + " of the server " +
                      shown(server) + " is missing in the event store '" +
                      path + "': " + withoutQueue);
}

StoreError damagedServer(const std::string& path, const std::string& server) {
    return damaged(path, "the server " + shown(server));
}

StoreError damagedClient(const std::string& path, const Identity& client) {
    return damaged(path, "the client " + shown(client.clientId) +
                             " of the server " + shown(client.serverId));
}

StoreError damagedList(const std::string& path, const std::string& server) {
    return damaged(path, "the clients of the server " + shown(server));
}

StoreError lostCommits(const std::string& path, const std::string& server) {
    return StoreError("The event store '" + path +
                      "' has lost steps that were answered, some of them of "
                      "the server " +
                      shown(server) +
                      ": its log was cut or altered, or its files were "
                      "replaced by earlier ones. Put the newest files back. "
                      "To go on with what is left, remove its gate '" +
                      path + ".gate'.");
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
