#include "emulator/manager/LimitRefusal.h"

#include <cstdint>

#include "emulator/manager/ShownText.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

std::string counted(std::int64_t count, const std::string& unit) {
    return std::to_string(count) + " " + unit + (count == 1 ? "" : "s");
}

std::string nameOf(const QueueLimitPassed& passed) {
    return passed.path.empty() ? "The event store in memory"
                               : "The event store '" + passed.path + "'";
}

// "keeps at most 3 events for a client (limit-events=3)"
std::string keepsAtMost(const QueueLimitPassed& passed,
                        const std::string& unit) {
    return nameOf(passed) + " keeps at most " + counted(passed.most, unit) +
           " for a client (limit-" + unit + "s=" + std::to_string(passed.most) +
           "), ";
}

// Nobody's getting makes room for such a put.
bool isTooLargeAlone(const QueueLimitPassed& passed) {
    return passed.limit == QueueLimitPassed::Limit::bytes &&
           passed.bytes > passed.most;
}

std::string cause(const QueueLimitPassed& passed) {
    const Backlog& before = passed.before;
    switch (passed.limit) {
        case QueueLimitPassed::Limit::events:
            return keepsAtMost(passed, "event") + "and " +
                   counted(before.events + 1, "event") +
                   " would wait with this put for ";
        case QueueLimitPassed::Limit::bytes:
            return keepsAtMost(passed, "byte") + "and " +
                   counted(before.bytes + passed.bytes, "byte") +
                   " would wait with this put for ";
        default:
            return nameOf(passed) +
                   " takes no events while one has waited for a client for " +
                   counted(passed.most, "second") +
                   " (limit-age=" + std::to_string(passed.most) +
                   "), and one has waited for " +
                   counted(before.seconds, "second") + " for ";
    }
}

}  // namespace

Refusal limitRefusal(const QueueLimitPassed& passed,
                     const std::string& serverId) {
    if (isTooLargeAlone(passed)) {
        return Refusal(Status::malformed,
                       keepsAtMost(passed, "byte") + "and this put alone has " +
                           std::to_string(passed.bytes) +
                           ". Nothing was stored. Send less at once, or raise "
                           "the limit.");
    }
    return Refusal(Status::malformed,
                   cause(passed) + "the client " +
                       shown(passed.before.clientId) + " of the server " +
                       shown(serverId) +
                       ". Nothing was stored. Let that client get its events, "
                       "or unregister it, then repeat the put.");
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
