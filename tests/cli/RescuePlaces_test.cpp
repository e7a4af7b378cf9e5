#include "cli/RescuePlaces.h"

#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>
#include <unistd.h>

using namespace ovmem::cli;

TEST(RescuePlaces, ANewNameIsOneOfOvmemsOwnAndIsGivenOnce) {
    const std::string first = newRescueName();
    EXPECT_TRUE(isRescueName(first)) << first;
    EXPECT_TRUE(isRescueName(first + "-12of30"));
    EXPECT_EQ(first.substr(0, 23), "events-not-delivered-20");
    EXPECT_EQ(first.find(std::to_string(getpid())),
              first.size() - std::to_string(getpid()).size());
}

TEST(RescuePlaces, PiecesAreInOrderWhereAShellSortsTheirNames) {
    EXPECT_EQ(nameOfPiece("x", 1, 3), "x-1of3");
    EXPECT_EQ(nameOfPiece("x", 9, 12), "x-09of12");
    EXPECT_EQ(nameOfPiece("x", 10, 12), "x-10of12");
    EXPECT_EQ(nameOfPiece("x", 1, 1000), "x-0001of1000");
}

TEST(RescuePlaces, OtherNamesAreNot) {
    EXPECT_FALSE(isRescueName(""));
    EXPECT_FALSE(isRescueName("events-not-delivered-"));
    EXPECT_FALSE(isRescueName("events-not-delivered-x\n"));
    EXPECT_FALSE(isRescueName("events-not-delivered-1/2"));
    EXPECT_FALSE(isRescueName("events"));
    EXPECT_FALSE(isRescueName("xevents-not-delivered-1"));
}

TEST(RescuePlaces, ATemporaryFolderThatIsNoneIsReplacedByTheUsualOne) {
    const char* former = std::getenv("TMPDIR");
    const std::string value = former == nullptr ? "" : former;
    for (const char* none : {"/dev/null", "/nowhere/at/all"}) {
        setenv("TMPDIR", none, 1);
        const std::vector<std::filesystem::path> places = listRescuePlaces();
        EXPECT_EQ(std::count(places.begin(), places.end(), none), 0);
        EXPECT_EQ(std::count(places.begin(), places.end(), "/tmp"), 1);
    }
    former == nullptr ? unsetenv("TMPDIR") : setenv("TMPDIR", value.c_str(), 1);
}

TEST(RescuePlaces, AFileThatIsBeingWrittenBearsNoSuchName) {
    EXPECT_FALSE(isRescueName(nameWhileWriting(newRescueName())));
}
