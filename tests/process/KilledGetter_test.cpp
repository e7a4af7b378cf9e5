#include <csignal>

#include "tests/cli/CliTest.h"

using OvMemTest::CliTest;
using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

// A getter that is killed before its exchange is complete.
class KilledGetter : public CliTest {
protected:
    KilledGetter() {
        registerClient("valve");
        put(sent);
    }

    void put(const std::string& events) const {
        EXPECT_EQ(as("pump").input(events).run({"put"}).exitCode, 0);
    }

    Outcome runKilled(const std::string& program,
                      const Program::Arguments& arguments) const {
        Program getter(program);
        getter.set("OVMEM_STORE", "sqlite:" + (folder / "events.db").string());
        getter.set("LC_ALL", "C.UTF-8");
        return getter.run(arguments);
    }

    // Kills one after so many pieces of the reply; returns what it had by
    // then.
    std::string killAfter(const std::string& pieces) const {
        const Outcome outcome =
            runKilled(OVMEM_DIE_WHILE_RECEIVING, {"plant", "valve", pieces});
        EXPECT_EQ(outcome.exitCode, -SIGKILL) << outcome.errors;
        return outcome.output;
    }

    static std::string manyLines() {
        std::string lines;
        for (int line = 0; line < 5000; ++line) {
            lines += "event number " + std::to_string(line) + "\n";
        }
        return lines;
    }

    const std::string sent = manyLines();
};

}  // namespace

TEST_F(KilledGetter, BeforeTheFirstPieceLosesNothing) {
    EXPECT_EQ(killAfter("0"), "");
    EXPECT_EQ(eventsOf("valve"), sent);
}

TEST_F(KilledGetter, BetweenTwoPiecesLosesNothing) {
    const std::string first = killAfter("1");
    EXPECT_FALSE(first.empty());
    EXPECT_LT(first.size(), sent.size());
    EXPECT_TRUE(sent.starts_with(first));
    const std::string second = killAfter("2");
    EXPECT_LT(first.size(), second.size());
    EXPECT_TRUE(sent.starts_with(second));
    EXPECT_EQ(eventsOf("valve"), sent);
}

TEST_F(KilledGetter, BetweenTheLastPieceAndTheEndLosesNothing) {
    EXPECT_EQ(killAfter("all"), sent);
    EXPECT_EQ(eventsOf("valve"), sent);
}

TEST_F(KilledGetter, InTheLibraryLosesNothing) {
    EXPECT_EQ(runKilled(OVMEM_ACT_AT_COMPLETE,
                        {"plant", "valve", "get", "die-before"}),
              (Outcome{-SIGKILL, "", ""}));
    EXPECT_EQ(eventsOf("valve"), sent);
}

TEST_F(KilledGetter, AfterTheExchangeIsCompleteLosesWhatItGot) {
    EXPECT_EQ(runKilled(OVMEM_ACT_AT_COMPLETE,
                        {"plant", "valve", "get", "die-after"}),
              (Outcome{-SIGKILL, "", ""}));
    EXPECT_EQ(eventsOf("valve"), "");
}

TEST_F(KilledGetter, WhoseExchangeCannotBeCompletedGetsTheSameAgain) {
    EXPECT_EQ(
        runKilled(OVMEM_ACT_AT_COMPLETE, {"plant", "valve", "get", "refuse"}),
        (Outcome{0, sent, ""}));
    EXPECT_EQ(eventsOf("valve"), sent);
    EXPECT_EQ(eventsOf("valve"), "");
}

TEST_F(KilledGetter, LeavesWhatComesLaterInItsPlace) {
    EXPECT_EQ(killAfter("all"), sent);
    put("later");
    EXPECT_EQ(eventsOf("valve"), sent + "later");
    EXPECT_EQ(eventsOf("valve"), "");
}
