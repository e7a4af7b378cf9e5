#ifndef TESTS_EMULATOR_QUEUEDEVENTS_H
#define TESTS_EMULATOR_QUEUEDEVENTS_H

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "emulator/store/SqliteStore.h"

namespace OvMemTest {

// What the files of a store hold. An empty text stands for no file.
struct StoreBytes {
    std::string database;
    std::string log;
    std::string gate;

    // Of the store at `path`, which may be open.
    static StoreBytes read(const std::string& path);

    void write(const std::string& path) const;
};

// Fills a store at random, from several servers and clients, with events from
// a few bytes to several pages, of which some are fetched on the way; and knows
// what is still queued for whom.
class QueuedEvents {
public:
    using Client = std::pair<std::string, std::string>;  // its server, its name

    // Registers everybody.
    QueuedEvents(Orvane::Net::OvModelEventManager::Emulator::SqliteStore& store,
                 std::uint64_t seed);

    // Puts and gets so many times.
    void act(Orvane::Net::OvModelEventManager::Emulator::SqliteStore& store,
             int steps);

    const std::map<Client, std::string>& queues() const { return queued; }

private:
    std::string makeEvents();

    std::mt19937_64 random;
    std::vector<Client> clients;
    std::map<Client, std::string> queued;
};

}  // namespace OvMemTest

#endif
