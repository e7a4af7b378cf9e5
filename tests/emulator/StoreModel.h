#ifndef TESTS_EMULATOR_STOREMODEL_H
#define TESTS_EMULATOR_STOREMODEL_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>

namespace OvMemTest {

// One thing that a client does with a store.
struct StoreStep {
    enum class Kind {
        registerClient,
        unregisterClient,
        sharedClients,
        put,
        get,          // the events stay queued
        getComplete,  // and they leave the queue
        complete      // of a get that was some steps ago
    };
    Kind kind = Kind::get;
    std::string server;
    std::string client;
    std::string events;   // of a put
    std::size_t get = 0;  // of a complete: which get
};

// What a store has to answer, by the simplest means: a queue for each client,
// into which a put is copied.
//
// Answers are texts: "none" if the client is not registered, else the clients,
// each in brackets, or the events.
class StoreModel {
public:
    explicit StoreModel(std::size_t portionOfAGet) : portion(portionOfAGet) {}

    // A get is kept as number gets(), for a complete later.
    std::string answer(const StoreStep& step);

    std::size_t gets() const { return got.size(); }

    // Completes of the gets after so many change nothing.
    void forgetGetsAfter(std::size_t count);

private:
    struct Event {
        std::int64_t put = 0;  // how many puts there were before
        std::string text;
    };
    using Queue = std::deque<Event>;
    struct Got {
        std::string server;
        std::string client;
        std::int64_t last = 0;  // put of the last event
    };

    std::string list(const std::string& server) const;
    std::string get(const StoreStep& step, const Queue& queue);
    void complete(const Got& done);

    std::size_t portion;
    std::int64_t puts = 0;
    std::map<std::string, std::map<std::string, Queue>> servers;
    std::deque<Got> got;
};

}  // namespace OvMemTest

#endif
