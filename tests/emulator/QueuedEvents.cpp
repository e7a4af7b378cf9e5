#include "tests/emulator/QueuedEvents.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace OvMemTest {

using Orvane::Net::OvModelEventManager::Emulator::SqliteStore;

namespace {

std::string bytesOf(const std::string& path) {
    return std::filesystem::exists(path) ? readFile(path) : "";
}

void writeUnlessEmpty(const std::string& path, const std::string& bytes) {
    if (!bytes.empty()) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
}

}  // namespace

StoreBytes StoreBytes::read(const std::string& path) {
    return {bytesOf(path), bytesOf(path + "-wal"), bytesOf(path + ".gate")};
}

// A database of no length is one that was cut, not one that is not there.
void StoreBytes::write(const std::string& path) const {
    std::ofstream(path, std::ios::binary) << database;
    writeUnlessEmpty(path + "-wal", log);
    writeUnlessEmpty(path + ".gate", gate);
}

// Names that differ in one bit are taken for one another most easily.
QueuedEvents::QueuedEvents(SqliteStore& store, std::uint64_t seed)
    : random(seed) {
    for (const char* server : {"plant", "office", "pier 1", "pier 3"}) {
        for (const char* name : {"a1", "a3", "motor", "", "listener"}) {
            clients.emplace_back(server, name);
            queued[clients.back()];
            store.registerClient({server, name});
        }
    }
}

void QueuedEvents::act(SqliteStore& store, int steps) {
    for (int step = 0; step < steps; ++step) {
        const Client& client = clients.at(random() % clients.size());
        const auto& [server, name] = client;
        if (random() % 4 == 0 && name != "listener") {
            const auto got = store.getEvents({server, name});
            ASSERT_TRUE(queued[client].starts_with(got->text));
            store.consume({server, name}, got->upto);
            queued[client].erase(0, got->text.size());
            continue;
        }
        const std::string events = makeEvents();
        store.putEvents({server, name}, events);
        for (auto& [other, queue] : queued) {
            if (other.first == server && other.second != name) {
                queue += events;
            }
        }
    }
}

std::string QueuedEvents::makeEvents() {
    constexpr std::size_t sizes[] = {10, 10, 100, 100, 100, 1000, 1000, 12000};
    std::string events(1 + random() % sizes[random() % std::size(sizes)], ' ');
    for (char& byte : events) {
        byte = static_cast<char>(random());
    }
    return events;
}

}  // namespace OvMemTest
