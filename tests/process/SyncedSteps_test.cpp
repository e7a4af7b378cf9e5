#include <gtest/gtest.h>

#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::TemporaryFolder;

namespace {

// What a store has written through to the disk when a step is answered.
class SyncedSteps : public testing::Test {
protected:
    Outcome with(const std::string& option) const {
        Program program(OVMEM_TELL_SYNCS);
        const std::string file = (folder / "events.db").string();
        program.set("OVMEM_STORE", "sqlite:" + file + option);
        program.set("LC_ALL", "C.UTF-8");
        return program.run({});
    }

    TemporaryFolder folder;
    const Outcome all{
        0, "register: waited\nput: waited\nput: waited\nget: waited\n", ""};
    const Outcome none{
        0, "register: went on\nput: went on\nput: went on\nget: went on\n", ""};
};

}  // namespace

TEST_F(SyncedSteps, AreAllOnTheDiskWithFull) {
    EXPECT_EQ(with("?synchronous=FULL"), all);
}

TEST_F(SyncedSteps, AreAllOnTheDiskUnlessTheUrlSaysOtherwise) {
    EXPECT_EQ(with(""), all);
}

TEST_F(SyncedSteps, AreLeftToTheSystemWithNormal) {
    EXPECT_EQ(with("?synchronous=NORMAL"), none);
}
