#ifndef EMULATOR_STORE_EVENTSTORE_H
#define EMULATOR_STORE_EVENTSTORE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "emulator/store/Lease.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// Who calls: a client and the server under which it shares events.
struct Identity {
    std::string serverId;
    std::string clientId;

    bool operator==(const Identity&) const = default;
};

// The clients of one server, ascending by bytes. As long as nobody comes or
// goes, a store hands out the same list, so that what was made from it can be
// kept.
using ClientList = std::shared_ptr<const std::vector<std::string>>;

// The first portion of what is queued for a client: as many events as fit into
// `portionBytes`, but at least one.
struct PendingEvents {
    std::string text;       // the events, one after the other
    std::int64_t upto = 0;  // number of the last event looked at
};

inline constexpr std::size_t portionBytes = 64 * 1024 * 1024;

// Where a Model Event Manager keeps its clients and their events.
//
// A store knows three things: a server with its next sequence number, a client
// with its cursor, an event with its number, sender and body. What is queued
// for a client is the range (cursor, last number], without what it sent itself.
// A number is taken in the transaction that stores the event, so the order of
// numbers is the order of commits, and a cursor never passes an event that is
// not yet visible.
//
// Server, client and events are bytes; empty ones are legal.
//
// Each operation happens whole or not at all.
//
// Threads: any, at the same time.
// THROWS: StoreError when the store cannot be reached or waited too long.
class EventStore {
public:
    EventStore() = default;
    EventStore(const EventStore&) = delete;
    EventStore& operator=(const EventStore&) = delete;
    virtual ~EventStore() = default;

    // Opens what there is to open, if it is not open. Every operation does so,
    // too; this is for those who want to know early.
    virtual void open() {}

    // Every answer is the list of clients after the operation, null if the
    // caller is not registered.

    // A new client gets events from now on; one already there keeps its queue.
    // Never null.
    //
    // THROWS: ClientListTooLong, too, for a new client; nothing is changed
    // then.
    virtual ClientList registerClient(const Identity& caller) = 0;

    // Drops the client and its queue. The list is without the caller.
    virtual ClientList unregisterClient(const Identity& caller) = 0;

    virtual ClientList sharedClients(const Identity& caller) = 0;

    // Queues `events` for every other client of the server. A store that
    // deduplicates stores a put once that the caller repeats with the same
    // `correlation`, unless that is empty, and the same text.
    //
    // THROWS: QueueLimitPassed, and nothing is queued.
    virtual ClientList putEvents(const Identity& caller,
                                 std::string_view events,
                                 std::string_view correlation = {}) = 0;

    // Whether anything is queued for the caller; nothing if it is not
    // registered.
    virtual std::optional<bool> hasEvents(const Identity& caller) = 0;

    // Waits until no other getter has a lease on the caller's queue, but not
    // longer than the store's terms say, and without holding up anybody else.
    // Never null.
    //
    // What cannot be shared between getters needs none of its own.
    virtual std::shared_ptr<Lease> lease(const Identity&) {
        return std::make_shared<Lease>();
    }

    // Nothing if the caller is not registered. The queue stays as it is. When
    // this portion is consumed, the next call gives the next one.
    virtual std::optional<PendingEvents> getEvents(const Identity& caller) = 0;

    // Takes everything up to the number `upto` out of the caller's queue. A
    // number already passed or not yet taken, or a caller no longer registered,
    // changes nothing.
    virtual void consume(const Identity& caller, std::int64_t upto) = 0;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
