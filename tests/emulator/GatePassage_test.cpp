#include "emulator/store/GatePassage.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "emulator/store/StoreError.h"
#include "tests/emulator/StoppedHolder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;
using OvMemTest::StoppedHolder;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

class GatePassageTest : public testing::Test {
protected:
    // What one is told who waits that long; "through" if it got through.
    std::string outcome(std::chrono::milliseconds limit) const {
        try {
            const GatePassage passage(gate, Clock::now() + limit);
            return "through";
        } catch (const StoreError& error) {
            return error.what();
        }
    }

    // How often this process has the gate open.
    std::ptrdiff_t opened() const {
        std::ptrdiff_t count = 0;
        for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            count += fs::read_symlink(entry, gone) == gate ? 1 : 0;
        }
        return count;
    }

    // Whether somebody has locked the first byte of the file.
    bool placeOfTheNextIsTaken() const {
        const int file = ::open(gate.c_str(), O_RDWR | O_CLOEXEC);
        struct flock place {};
        place.l_type = F_WRLCK;
        place.l_len = 1;
        EXPECT_EQ(::fcntl(file, F_OFD_GETLK, &place), 0);
        ::close(file);
        return place.l_type != F_UNLCK;
    }

    OvMemTest::TemporaryFolder folder;
    const std::string gate = folder.file("gate");
};

}  // namespace

TEST_F(GatePassageTest, OneIsThroughAtATime) {
    std::atomic<int> inside = 0;
    std::atomic<int> passages = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                const GatePassage passage(gate);
                EXPECT_EQ(++inside, 1);
                std::this_thread::yield();
                --inside;
                ++passages;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(passages, 400);
}

TEST_F(GatePassageTest, AStoppedHolderIsNamedWhenTheTimeIsOver) {
    const StoppedHolder holder(gate);
    EXPECT_EQ(outcome(50ms), holder.timeoutText());
}

TEST_F(GatePassageTest, FiftyWaitersWaitNoLongerThanOne) {
    const StoppedHolder holder(gate);
    const auto start = Clock::now();
    std::vector<std::thread> waiters;
    for (int i = 0; i < 50; ++i) {
        waiters.emplace_back(
            [&] { EXPECT_EQ(outcome(1000ms), holder.timeoutText()); });
    }
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    // One after the other they would take 50 seconds.
    EXPECT_LT(Clock::now() - start, 25s);
}

TEST_F(GatePassageTest, ItOpensWhenItsHolderIsKilled) {
    auto holder = std::make_unique<StoppedHolder>(gate);
    std::string told;
    std::thread waiter([&] { told = outcome(10s); });
    EXPECT_NE(outcome(20ms), "through");
    holder.reset();
    waiter.join();
    EXPECT_EQ(told, "through");
}

// The place of the next is a lock on the first byte of the file.
TEST_F(GatePassageTest, WhoIsStoppedInThePlaceOfTheNextIsPassed) {
    const int file = ::open(gate.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    struct flock place {};
    place.l_type = F_WRLCK;
    place.l_len = 1;
    ASSERT_EQ(::fcntl(file, F_OFD_SETLK, &place), 0);
    EXPECT_EQ(outcome(10s), "through");
    ::close(file);
}

TEST_F(GatePassageTest, AFileThatCannotBeMadeIsReported) {
    try {
        const GatePassage passage(folder.file("nowhere/gate"));
        ADD_FAILURE() << "passed a gate that is not there";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.what(),
                  "The gate file '" + folder.file("nowhere/gate") +
                      "' of the event store cannot be locked (No such file "
                      "or directory). Make its folder writable, or set "
                      "OVMEM_STORE to a place that is.");
    }
}

TEST_F(GatePassageTest, AGateThatIsKeptIsOpenedOnceForAllPassages) {
    {
        Gate kept(gate);
        EXPECT_EQ(kept.path(), gate);
        EXPECT_EQ(opened(), 0);
        for (int i = 0; i < 3; ++i) {
            const GatePassage passage(kept, Clock::now());
            EXPECT_EQ(opened(), 1);
        }
        EXPECT_EQ(opened(), 1);
    }
    EXPECT_EQ(opened(), 0);
}

TEST_F(GatePassageTest, AGateThatIsKeptIsShutDuringAPassageOnly) {
    Gate kept(gate);
    {
        const GatePassage passage(kept, Clock::now());
        EXPECT_EQ(outcome(20ms),
                  "The event store is in use: another part of this process "
                  "holds its gate '" +
                      gate +
                      "'. Let that process go on or end it, then repeat the "
                      "call.");
    }
    EXPECT_EQ(outcome(0ms), "through");
}

TEST_F(GatePassageTest, OneIsThroughAtATimeAlsoWhereGatesAreKept) {
    // Counted in two steps, so that two at a time would lose a passage. The
    // thread sanitizer does not know that the gate is a lock.
    std::atomic<int> passages = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] {
            Gate kept(gate);
            for (int round = 0; round < 50; ++round) {
                const Deadline limit = Clock::now() + 60s;
                if (i % 2 == 0) {
                    const GatePassage passage(kept, limit);
                    passages = passages + 1;
                } else {
                    const GatePassage passage(gate, limit);
                    passages = passages + 1;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(passages, 400);
}

TEST_F(GatePassageTest, WhoWaitedInVainAtAKeptGateIsNoLongerNext) {
    Gate kept(gate);
    const StoppedHolder holder(gate);
    try {
        const GatePassage passage(kept, Clock::now() + 50ms);
        ADD_FAILURE() << "passed a gate that is shut";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.what(), holder.timeoutText());
    }
    EXPECT_EQ(opened(), 1);
    EXPECT_FALSE(placeOfTheNextIsTaken());
}

TEST_F(GatePassageTest, AHolderSeesThatSomebodyWaits) {
    Gate kept(gate);
    std::thread waiter;
    {
        const GatePassage passage(kept, Clock::now());
        EXPECT_FALSE(kept.hasWaiters());
        waiter = std::thread([this] { EXPECT_EQ(outcome(60s), "through"); });
        const auto limit = Clock::now() + 30s;
        while (!kept.hasWaiters() && Clock::now() < limit) {
            std::this_thread::yield();
        }
        EXPECT_TRUE(kept.hasWaiters());
    }
    waiter.join();
    EXPECT_FALSE(kept.hasWaiters());
}

TEST_F(GatePassageTest, AKeptGateKnowsWhetherItStillHasItsName) {
    Gate kept(gate);
    EXPECT_FALSE(kept.hasItsName());
    { const GatePassage passage(kept, Clock::now()); }
    EXPECT_TRUE(kept.hasItsName());
    fs::rename(gate, gate + "-moved");
    EXPECT_FALSE(kept.hasItsName());
    folder.write("gate", "");
    EXPECT_FALSE(kept.hasItsName());
    fs::rename(gate + "-moved", gate);
    EXPECT_TRUE(kept.hasItsName());
    fs::remove(gate);
    EXPECT_FALSE(kept.hasItsName());
}
