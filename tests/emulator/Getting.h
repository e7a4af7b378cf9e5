#ifndef TESTS_EMULATOR_GETTING_H
#define TESTS_EMULATOR_GETTING_H

#include <string>

#include "emulator/manager/EventManager.h"
#include "emulator/manager/SharedClientsReplies.h"
#include "emulator/store/EventStore.h"
#include "emulator/store/StoreError.h"

namespace OvMemTest {

namespace Emulator = Orvane::Net::OvModelEventManager::Emulator;

// One who gets the events of a client from a store, as an exchange does.
class Getting {
public:
    Getting(Emulator::EventStore& eventStore, Emulator::Identity client)
        : manager(eventStore, replies), identity(std::move(client)) {}

    // What is queued. Others wait from now on.
    std::string begin() {
        reply = {};
        reply = manager.answer(
            {Emulator::Operation::getEvents, identity, "test"}, "");
        return *reply.text;
    }

    void complete() {
        if (reply.consumption) {
            manager.complete(*reply.consumption);
        }
        giveUp();
    }

    void giveUp() { reply = {}; }

    std::string take() {
        std::string events = begin();
        complete();
        return events;
    }

    // Why begin is refused.
    std::string refusal() {
        try {
            begin();
        } catch (const Emulator::StoreError& error) {
            return error.what();
        }
        return "no refusal";
    }

private:
    Emulator::SharedClientsReplies replies;
    Emulator::EventManager manager;
    const Emulator::Identity identity;
    Emulator::Reply reply;
};

}  // namespace OvMemTest

#endif
