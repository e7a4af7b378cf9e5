#include <csignal>

#include "tests/cli/CliTest.h"

using OvMemTest::CliTest;
using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

// A putter that is killed before it is told that its events are stored.
class KilledPutter : public CliTest {
protected:
    KilledPutter() { registerClient("valve"); }

    Outcome putAndAct(const std::string& action) const {
        Program putter(OVMEM_ACT_AT_COMPLETE);
        putter.set("OVMEM_STORE", "sqlite:" + (folder / "events.db").string());
        putter.set("LC_ALL", "C.UTF-8");
        return putter.input("tick\n").run({"plant", "pump", "put", action});
    }
};

}  // namespace

TEST_F(KilledPutter, HasPutOnceTheServiceHasAnswered) {
    EXPECT_EQ(putAndAct("die-before"), (Outcome{-SIGKILL, "", ""}));
    EXPECT_EQ(eventsOf("valve"), "tick\n");
}

TEST_F(KilledPutter, DoublesItsEventsByPuttingThemAgain) {
    EXPECT_EQ(putAndAct("die-before"), (Outcome{-SIGKILL, "", ""}));
    EXPECT_EQ(putAndAct("complete"), (Outcome{0, "", ""}));
    EXPECT_EQ(eventsOf("valve"), "tick\ntick\n");
}

TEST_F(KilledPutter, WhoseExchangeCannotBeCompletedHasPutOnce) {
    EXPECT_EQ(putAndAct("refuse"), (Outcome{0, "", ""}));
    EXPECT_EQ(eventsOf("valve"), "tick\n");
}
