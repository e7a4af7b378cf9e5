#include "emulator/store/StoreRows.h"

#include <cstdint>
#include <set>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

TEST(StoreRows, EveryValueOfAServerCounts) {
    const std::set<std::int64_t> checksums{
        ServerRow{1, 2, 3, 4}.checksum("plant"),
        ServerRow{2, 2, 3, 4}.checksum("plant"),
        ServerRow{1, 3, 3, 4}.checksum("plant"),
        ServerRow{1, 2, 4, 4}.checksum("plant"),
        ServerRow{1, 2, 3, 5}.checksum("plant"),
        ServerRow{1, 2, 3, 4}.checksum("plans"),
        ServerRow{1, 2, 3, 4}.checksum(""),
    };
    EXPECT_EQ(checksums.size(), 7U);
    EXPECT_EQ((ServerRow{1, 2, 3, 4}.checksum("plant")),
              (ServerRow{1, 2, 3, 4}.checksum("plant")));
}

TEST(StoreRows, EveryValueOfAClientCounts) {
    const std::set<std::int64_t> checksums{
        clientChecksum(1, "pump", 5), clientChecksum(2, "pump", 5),
        clientChecksum(1, "pumq", 5), clientChecksum(1, "pump", 6),
        clientChecksum(1, "", 5),
    };
    EXPECT_EQ(checksums.size(), 5U);
    EXPECT_EQ(clientChecksum(1, "pump", 5), clientChecksum(1, "pump", 5));
}

TEST(StoreRows, MarksAddUpInAnyOrderAndCanBeTakenAway) {
    const std::int64_t pump = memberMark("pump");
    const std::int64_t valve = memberMark("valve");
    EXPECT_NE(pump, valve);
    EXPECT_NE(memberMark(""), 0);
    EXPECT_EQ(plus(pump, valve), plus(valve, pump));
    EXPECT_EQ(minus(plus(pump, valve), pump), valve);
    EXPECT_EQ(plus(INT64_MAX, 1), INT64_MIN);
    EXPECT_EQ(minus(INT64_MIN, 1), INT64_MAX);
}
