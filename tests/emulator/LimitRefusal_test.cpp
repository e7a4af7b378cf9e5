#include "emulator/manager/LimitRefusal.h"

#include <string>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

using Limit = QueueLimitPassed::Limit;

std::string refusal(QueueLimitPassed passed, const std::string& path = "") {
    passed.path = path;
    const Refusal refused = limitRefusal(passed, "plant");
    EXPECT_EQ(refused.status, -751);
    return refused.what();
}

}  // namespace

TEST(LimitRefusal, SaysWhichClientLeftTooManyEvents) {
    EXPECT_EQ(refusal({Limit::events, 3, {"valve", 3, 12, 0}, 4}, "/e.db"),
              "The event store '/e.db' keeps at most 3 events for a client "
              "(limit-events=3), and 4 events would wait with this put for the "
              "client 'valve' of the server 'plant'. Nothing was stored. Let "
              "that client get its events, or unregister it, then repeat the "
              "put.");
    EXPECT_EQ(refusal({Limit::events, 1, {"", 1, 4, 0}, 4}),
              "The event store in memory keeps at most 1 event for a client "
              "(limit-events=1), and 2 events would wait with this put for the "
              "client '' of the server 'plant'. Nothing was stored. Let that "
              "client get its events, or unregister it, then repeat the put.");
}

TEST(LimitRefusal, SaysWhichClientLeftTooManyBytes) {
    EXPECT_EQ(refusal({Limit::bytes, 10, {"valve", 2, 7, 0}, 4}, "/e.db"),
              "The event store '/e.db' keeps at most 10 bytes for a client "
              "(limit-bytes=10), and 11 bytes would wait with this put for the "
              "client 'valve' of the server 'plant'. Nothing was stored. Let "
              "that client get its events, or unregister it, then repeat the "
              "put.");
}

TEST(LimitRefusal, SaysThatAPutIsTooLargeForAnyQueue) {
    EXPECT_EQ(refusal({Limit::bytes, 10, {"valve", 2, 7, 0}, 11}, "/e.db"),
              "The event store '/e.db' keeps at most 10 bytes for a client "
              "(limit-bytes=10), and this put alone has 11. Nothing was "
              "stored. Send less at once, or raise the limit.");
}

TEST(LimitRefusal, SaysForWhichClientAnEventHasWaitedTooLong) {
    EXPECT_EQ(refusal({Limit::age, 60, {"valve", 1, 7, 75}, 4}, "/e.db"),
              "The event store '/e.db' takes no events while one has waited "
              "for a client for 60 seconds (limit-age=60), and one has waited "
              "for 75 seconds for the client 'valve' of the server 'plant'. "
              "Nothing was stored. Let that client get its events, or "
              "unregister it, then repeat the put.");
    EXPECT_EQ(refusal({Limit::age, 1, {"valve\n", 1, 7, 1}, 4}, "/e.db"),
              "The event store '/e.db' takes no events while one has waited "
              "for a client for 1 second (limit-age=1), and one has waited "
              "for 1 second for the client 'valve?' of the server 'plant'. "
              "Nothing was stored. Let that client get its events, or "
              "unregister it, then repeat the put.");
}
