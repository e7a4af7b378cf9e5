#include "emulator/store/FolderWatch.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

namespace fs = std::filesystem;

class FolderWatchTest : public testing::Test {
protected:
    FolderWatchTest() {
        folder.write("file", "text");
        // As if all that had been a minute ago.
        fs::last_write_time(folder / "", fs::file_time_type::clock::now() -
                                             std::chrono::minutes(1));
    }

    void expectNoticed(const std::function<void()>& change) {
        FolderWatch watch((folder / "").string());
        EXPECT_FALSE(watch.isUnchanged()) << "nobody looked yet";
        watch.accept();
        EXPECT_TRUE(watch.isUnchanged());
        EXPECT_TRUE(watch.isUnchanged());
        change();
        EXPECT_FALSE(watch.isUnchanged());
        watch.accept();
        EXPECT_FALSE(watch.isUnchanged()) << "it was changed just now";
    }

    OvMemTest::TemporaryFolder folder;
};

}  // namespace

TEST_F(FolderWatchTest, AFileThatIsRemovedIsNoticed) {
    expectNoticed([this] { fs::remove(folder / "file"); });
}

TEST_F(FolderWatchTest, AFileThatIsMadeIsNoticed) {
    expectNoticed([this] { folder.write("new", "text"); });
}

TEST_F(FolderWatchTest, AFileThatGetsAnotherNameIsNoticed) {
    expectNoticed([this] { fs::rename(folder / "file", folder / "other"); });
}

TEST_F(FolderWatchTest, AFolderThatACopyOfTheSameTimeReplacesIsNoticed) {
    const fs::path named = folder / "named";
    const auto longAgo =
        fs::file_time_type::clock::now() - std::chrono::minutes(1);
    fs::create_directory(named);
    fs::last_write_time(named, longAgo);
    FolderWatch watch(named.string());
    EXPECT_FALSE(watch.isUnchanged());
    watch.accept();
    EXPECT_TRUE(watch.isUnchanged());
    fs::rename(named, folder / "moved");
    fs::create_directory(named);
    fs::last_write_time(named, longAgo);
    EXPECT_FALSE(watch.isUnchanged());
    watch.accept();
    EXPECT_TRUE(watch.isUnchanged());
}

TEST_F(FolderWatchTest, WhatIsWrittenIntoAFileIsNoChangeOfNames) {
    FolderWatch watch((folder / "").string());
    EXPECT_FALSE(watch.isUnchanged());
    watch.accept();
    fs::resize_file(folder / "file", 100);
    EXPECT_TRUE(watch.isUnchanged());
}

TEST_F(FolderWatchTest, AFolderThatIsNotThereIsNeverUnchanged) {
    FolderWatch watch(folder.file("nowhere"));
    EXPECT_FALSE(watch.isUnchanged());
    watch.accept();
    EXPECT_FALSE(watch.isUnchanged());
}
