#include "emulator/store/EventChecksum.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

TEST(EventChecksum, ItIsTheSameForTheSameEvent) {
    EXPECT_EQ(eventChecksum(1, 2, "events"),
              eventChecksum(1, 2, std::string("events")));
}

TEST(EventChecksum, PlaceAndLengthCount) {
    const std::set<std::int64_t> checksums{
        eventChecksum(1, 2, "events"),
        eventChecksum(2, 2, "events"),
        eventChecksum(1, 3, "events"),
        eventChecksum(1, 2, "event"),
        eventChecksum(1, 2, ""),
        eventChecksum(1, 2, std::string(32, '\0')),
        eventChecksum(1, 2, std::string(64, '\0')),
        eventChecksum(1, 2, std::string("events\0", 7)),
    };
    EXPECT_EQ(checksums.size(), 8U);
}

TEST(EventChecksum, NoBitOfABodyCanBeAlteredUnnoticed) {
    std::string body(100, 'e');
    std::set<std::int64_t> checksums{eventChecksum(1, 1, body)};
    for (char& byte : body) {
        for (int bit = 0; bit < 8; ++bit) {
            byte = static_cast<char>(byte ^ (1 << bit));
            checksums.insert(eventChecksum(1, 1, body));
            byte = static_cast<char>(byte ^ (1 << bit));
        }
    }
    EXPECT_EQ(checksums.size(), 801U);
}
