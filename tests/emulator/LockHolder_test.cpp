#include "emulator/store/LockHolder.h"

#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "emulator/store/GatePassage.h"
#include "tests/emulator/StoppedHolder.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;

TEST(LockHolder, AStoppedProcessIsNamedAsOne) {
    const OvMemTest::TemporaryFolder folder;
    const std::string file = folder.write("file", "");
    const OvMemTest::StoppedHolder holder(folder.file("gate"));
    EXPECT_EQ(describeLockHolder({file, folder.file("gate")}),
              holder.description());
}

TEST(LockHolder, AnotherProcessComesBeforeThisOne) {
    const OvMemTest::TemporaryFolder folder;
    const GatePassage own(folder.file("own"));
    EXPECT_EQ(describeLockHolder({folder.file("own")}),
              "another part of this process");
    const OvMemTest::StoppedHolder holder(folder.file("gate"));
    EXPECT_EQ(describeLockHolder({folder.file("own"), folder.file("gate")}),
              holder.description());
    EXPECT_EQ(describeLockHolder({folder.file("gate"), folder.file("own")}),
              holder.description());
}

TEST(LockHolder, WhoCannotBeSeenIsNotNamed) {
    const OvMemTest::TemporaryFolder folder;
    const std::string file = folder.write("file", "");
    EXPECT_EQ(describeLockHolder({file, folder.file("nothing")}),
              "a process that cannot be seen from here");
}

TEST(LockHolder, ALockThatOthersMayShareDoesNotCount) {
    const OvMemTest::TemporaryFolder folder;
    const std::string file = folder.write("file", "");
    const int shared = ::open(file.c_str(), O_RDONLY);
    ASSERT_EQ(::flock(shared, LOCK_SH), 0);
    EXPECT_EQ(describeLockHolder({file}),
              "a process that cannot be seen from here");
    ::close(shared);
}
