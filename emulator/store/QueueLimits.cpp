#include "emulator/store/QueueLimits.h"

#include <algorithm>
#include <chrono>

namespace Orvane::Net::OvModelEventManager::Emulator {

QueueLimitPassed::QueueLimitPassed(Limit passed, std::int64_t limitOfTheStore,
                                   const Backlog& backlog,
                                   std::int64_t bytesOfThePut)
    : std::runtime_error("a limit of the event store"),
      limit(passed),
      most(limitOfTheStore),
      before(backlog),
      bytes(bytesOfThePut) {}

void requireRoom(const QueueLimits& limits, const Backlog& backlog,
                 std::size_t size) {
    using Limit = QueueLimitPassed::Limit;
    const auto bytes = static_cast<std::int64_t>(size);
    if (limits.events && backlog.events >= *limits.events) {
        throw QueueLimitPassed(Limit::events, *limits.events, backlog, bytes);
    }
    if (limits.bytes && bytes > *limits.bytes - backlog.bytes) {
        throw QueueLimitPassed(Limit::bytes, *limits.bytes, backlog, bytes);
    }
    if (limits.seconds && backlog.events > 0 &&
        backlog.seconds >= *limits.seconds) {
        throw QueueLimitPassed(Limit::age, *limits.seconds, backlog, bytes);
    }
}

std::int64_t secondsNow() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

std::int64_t secondsSince(std::int64_t then, std::int64_t now) {
    return std::max<std::int64_t>(now - then, 0);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
