#include "emulator/store/EventChecksum.h"

#include <cstdint>
#include <set>
#include <string>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

TEST(EventChecksum, ItIsTheSameForTheSameEvent) {
    EXPECT_EQ(originChecksum({1, 2, "pump", 3, 4}),
              originChecksum({1, 2, std::string("pump"), 3, 4}));
    EXPECT_EQ(eventChecksum(5, "events"),
              eventChecksum(5, std::string("events")));
}

TEST(EventChecksum, PlaceSenderStartAndTimeCount) {
    const std::set<std::int64_t> checksums{
        originChecksum({1, 2, "pump", 3, 4}),
        originChecksum({2, 2, "pump", 3, 4}),
        originChecksum({1, 3, "pump", 3, 4}),
        originChecksum({2, 1, "pump", 3, 4}),
        originChecksum({1, 2, "pumq", 3, 4}),
        originChecksum({1, 2, "", 3, 4}),
        originChecksum({1, 2, "pump", 2, 4}),
        originChecksum({1, 2, "pump", 3, 3}),
        originChecksum({1, 2, "pump", 4, 3}),
        originChecksum({0, 0, "", 0, 0}),
    };
    EXPECT_EQ(checksums.size(), 10U);
    EXPECT_FALSE(checksums.contains(0));
}

TEST(EventChecksum, OriginAndLengthCount) {
    const std::set<std::int64_t> checksums{
        eventChecksum(1, "events"),
        eventChecksum(2, "events"),
        eventChecksum(1, "event"),
        eventChecksum(1, ""),
        eventChecksum(0, ""),
        eventChecksum(1, std::string(32, '\0')),
        eventChecksum(1, std::string(64, '\0')),
        eventChecksum(1, std::string("events\0", 7)),
    };
    EXPECT_EQ(checksums.size(), 8U);
    EXPECT_FALSE(checksums.contains(0));
}

TEST(EventChecksum, NoBitOfABodyCanBeAlteredUnnoticed) {
    std::string body(100, 'e');
    std::set<std::int64_t> checksums{eventChecksum(1, body)};
    for (char& byte : body) {
        for (int bit = 0; bit < 8; ++bit) {
            byte = static_cast<char>(byte ^ (1 << bit));
            checksums.insert(eventChecksum(1, body));
            byte = static_cast<char>(byte ^ (1 << bit));
        }
    }
    EXPECT_EQ(checksums.size(), 801U);
}
