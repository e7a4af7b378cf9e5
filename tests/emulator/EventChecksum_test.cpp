#include "emulator/store/EventChecksum.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

TEST(EventChecksum, ItIsTheSameForTheSameEvent) {
    EXPECT_EQ(eventChecksum(1, 2, "pump", "events"),
              eventChecksum(1, 2, "pump", std::string("events")));
}

TEST(EventChecksum, EveryPartCounts) {
    const std::set<std::int64_t> checksums{
        eventChecksum(1, 2, "pump", "events"),
        eventChecksum(2, 2, "pump", "events"),
        eventChecksum(1, 3, "pump", "events"),
        eventChecksum(1, 2, "bump", "events"),
        eventChecksum(1, 2, "pum", "pevents"),
        eventChecksum(1, 2, "", "pumpevents"),
        eventChecksum(1, 2, "pump", "event"),
        eventChecksum(1, 2, "pump", std::string("events\0", 7)),
    };
    EXPECT_EQ(checksums.size(), 8U);
}

TEST(EventChecksum, NoBitOfABodyCanBeAlteredUnnoticed) {
    std::string body(100, 'e');
    std::set<std::int64_t> checksums{eventChecksum(1, 1, "pump", body)};
    for (char& byte : body) {
        for (int bit = 0; bit < 8; ++bit) {
            byte = static_cast<char>(byte ^ (1 << bit));
            checksums.insert(eventChecksum(1, 1, "pump", body));
            byte = static_cast<char>(byte ^ (1 << bit));
        }
    }
    EXPECT_EQ(checksums.size(), 801U);
}
