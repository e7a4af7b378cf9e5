#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "tests/cli/CliTest.h"

using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

// Puts that are repeated, over a store that stores a repeated one once.
class RetriedPut : public OvMemTest::CliTest {
protected:
    RetriedPut() {
        ovmem.set("OVMEM_STORE", "sqlite:" + (folder / "events.db").string() +
                                     "?dedupe=correlation");
        registerClient("pump");
        registerClient("valve");
    }

    Program putter(const std::string& events) const {
        return as("pump").input(events);
    }

    Outcome putBack() const {
        folder.write("home/.local/state/ovmem/" + saved, "saved;");
        return as("pump").run({"rescue", "put-back", saved});
    }

    // Kills so many putters, each at a moment of its own, and repeats every
    // put until one was told that it is stored. Returns all that was put.
    std::string putAndKill(int kills) const;

    const std::string saved = "events-not-delivered-20240501T120000.000001Z-17";
    const Outcome stored{
        0, "valve\n",
        "ovmem: Put 4 bytes; 1 other client shares the events.\n"};
};

class LongRetriedPut : public RetriedPut {};

std::string RetriedPut::putAndKill(int kills) const {
    const auto start = Clock::now();
    EXPECT_EQ(putter("0;").run({"put", "--id", "0"}).exitCode, 0);
    const auto usual =
        std::chrono::duration_cast<microseconds>(Clock::now() - start);
    std::mt19937 random(20240501);
    std::uniform_int_distribution<microseconds::rep> moment(0, usual.count());
    std::string all = "0;";
    int killed = 0;
    for (int number = 1; killed < kills; ++number) {
        const std::string id = std::to_string(number);
        const std::string events = id + ";";
        all += events;
        for (int tries = 0;; ++tries) {
            auto running = putter(events).start({"put", "--quiet", "--id", id});
            if (tries < 10) {
                std::this_thread::sleep_for(microseconds(moment(random)));
                running.send(SIGKILL);
            }
            const Outcome outcome = running.waitForEnd();
            if (outcome.exitCode == 0) {
                break;
            }
            EXPECT_EQ(outcome.exitCode, -SIGKILL) << outcome;
            if (outcome.exitCode != -SIGKILL) {
                return "not put";
            }
            ++killed;
        }
    }
    return all;
}

}  // namespace

TEST_F(RetriedPut, WithAnIdArrivesOnce) {
    EXPECT_EQ(putter("tick").run({"put", "--id", "run 1"}), stored);
    EXPECT_EQ(putter("tick").run({"put", "--id", "run 1"}), stored);
    EXPECT_EQ(eventsOf("valve"), "tick");
}

TEST_F(RetriedPut, WithAnotherIdOrAnotherTextIsAnotherPut) {
    EXPECT_EQ(putter("tick").run({"put", "--id", "run 1"}), stored);
    EXPECT_EQ(putter("tick").run({"put", "--id", "run 2"}), stored);
    EXPECT_EQ(putter("tock").run({"put", "--id", "run 1"}), stored);
    EXPECT_EQ(eventsOf("valve"), "tickticktock");
}

TEST_F(RetriedPut, WithoutAnIdArrivesEveryTime) {
    EXPECT_EQ(putter("tick").run({"put"}), stored);
    EXPECT_EQ(putter("tick").run({"put"}), stored);
    EXPECT_EQ(eventsOf("valve"), "ticktick");
}

TEST_F(RetriedPut, OfSavedEventsArrivesOnce) {
    const Outcome done{0, "valve\n",
                       "ovmem: Put back 6 bytes and removed 1 file; 1 other "
                       "client shares the events.\n"};
    std::filesystem::create_directories(folder / "home/.local/state/ovmem");
    EXPECT_EQ(putBack(), done);
    EXPECT_EQ(putBack(), done);  // as if the file had not been removed
    EXPECT_EQ(eventsOf("valve"), "saved;");
}

TEST_F(RetriedPut, LosesAndDoublesNothingWhenPuttersAreKilled) {
    const std::string all = putAndKill(30);
    EXPECT_EQ(eventsOf("valve"), all);
}

TEST_F(LongRetriedPut, LosesAndDoublesNothingInAThousandKills) {
    const std::string all = putAndKill(1000);
    EXPECT_EQ(eventsOf("valve"), all);
}
