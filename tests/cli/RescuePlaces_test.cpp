#include "cli/RescuePlaces.h"

#include <gtest/gtest.h>

using namespace ovmem::cli;

TEST(RescuePlaces, ANewNameIsOneOfOvmemsOwnAndIsGivenOnce) {
    const std::string first = newRescueName();
    EXPECT_TRUE(isRescueName(first)) << first;
    EXPECT_TRUE(isRescueName(first + "-12of30"));
    EXPECT_EQ(first.substr(0, 23), "events-not-delivered-20");
    EXPECT_EQ(first.find(std::to_string(getpid())),
              first.size() - std::to_string(getpid()).size());
}

TEST(RescuePlaces, OtherNamesAreNot) {
    EXPECT_FALSE(isRescueName(""));
    EXPECT_FALSE(isRescueName("events-not-delivered-"));
    EXPECT_FALSE(isRescueName("events-not-delivered-x\n"));
    EXPECT_FALSE(isRescueName("events-not-delivered-1/2"));
    EXPECT_FALSE(isRescueName("events"));
    EXPECT_FALSE(isRescueName("xevents-not-delivered-1"));
}

TEST(RescuePlaces, AFileThatIsBeingWrittenBearsNoSuchName) {
    EXPECT_FALSE(isRescueName(nameWhileWriting(newRescueName())));
}
