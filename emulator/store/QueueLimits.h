#ifndef EMULATOR_STORE_QUEUELIMITS_H
#define EMULATOR_STORE_QUEUELIMITS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace Orvane::Net::OvModelEventManager::Emulator {

// How much a store keeps for the slowest client of each server: what is queued
// from the first event on that it has not got. Without a number there is no
// limit.
struct QueueLimits {
    std::optional<std::int64_t> events;
    std::optional<std::int64_t> bytes;
    std::optional<std::int64_t> seconds;  // the age of the first event

    bool any() const { return events || bytes || seconds; }
    bool operator==(const QueueLimits&) const = default;
};

// What is queued for the slowest client of a server.
struct Backlog {
    std::string clientId;
    std::int64_t events = 0;
    std::int64_t bytes = 0;
    std::int64_t seconds = 0;  // since the first event was put
};

// A put was refused since it would pass a limit; nothing was stored.
class QueueLimitPassed : public std::runtime_error {
public:
    enum class Limit { events, bytes, age };

    QueueLimitPassed(Limit passed, std::int64_t limitOfTheStore,
                     const Backlog& backlog, std::int64_t bytesOfThePut);

    const Limit limit;
    const std::int64_t most;  // what the limit allows
    const Backlog before;     // without the put
    const std::int64_t bytes;

    // Of a file; empty for a store in memory. Whoever knows it fills it in.
    std::string path;
};

// Whether `bytes` more fit behind a backlog. An event is at its limit of age
// when it has waited for that long.
//
// THROWS: QueueLimitPassed.
void requireRoom(const QueueLimits& limits, const Backlog& backlog,
                 std::size_t bytes);

// The real time in seconds, as events carry it.
std::int64_t secondsNow();

// Never negative: a clock may have been set back.
std::int64_t secondsSince(std::int64_t then, std::int64_t now);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
