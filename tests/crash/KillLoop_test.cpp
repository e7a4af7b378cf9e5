#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/crash/Looping.h"
#include "tests/crash/Received.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/NextOperations.h"
#include "tests/emulator/Wire.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Repeat.h"
#include "tests/support/TemporaryFolder.h"

using namespace OvMemTest;
using namespace std::chrono_literals;

// Processes put and get as fast as they can and are killed at any moment, to be
// followed by others that go on. Nobody loses or doubles an answered event.

namespace {

constexpr int livesOfARound = 3;

// What one process said until it was killed.
struct Life {
    std::string name;
    std::string output;
};

class KillLoop : public testing::TestWithParam<std::uint64_t> {
protected:
    void playRound(std::uint64_t seed) {
        random.seed(seed);
        const TemporaryFolder folder;
        Environment environment;
        environment.set("OVMEM_STORE",
                        "sqlite:" + folder.file("events.db") +
                            (chance(0.5) ? "" : "?synchronous=NORMAL"));
        start();
        for (const char* client : {"watcher", "getter"}) {
            expectDone(request("registerClient", "plant", client));
        }
        // Those who are forked find the transport started, or start it.
        const bool isOpen = chance(0.5);
        if (!isOpen) {
            OvMem_Term();
        }
        std::vector<Life> putters;
        std::vector<Life> getters;
        for (int life = 0; life < livesOfARound; ++life) {
            playLife(std::to_string(life), isOpen, putters, getters);
        }
        if (!isOpen) {
            start();
        }
        const std::string all = takeAll("watcher");
        for (const Life& putter : putters) {
            SCOPED_TRACE(putter.name + ": " + putter.output);
            answered += expectArrivals(all, putter.name, putter.output);
        }
        Received received(all);
        for (const Life& getter : getters) {
            SCOPED_TRACE(getter.name);
            received.addOutput(getter.output);
        }
        received.addRest(takeAll("getter"));
        expectNextOperationsWork();
        OvMem_Term();
    }

    std::uint64_t kills = 0;
    std::uint64_t answered = 0;

private:
    static void start() {
        ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0) << lastError();
    }

    static void expectDone(const Outcome& outcome) {
        EXPECT_EQ(outcome.status, -1) << outcome;
    }

    static std::string takeAll(const std::string& client) {
        const Outcome got = request("getEvents", "plant", client);
        expectDone(got);
        return got.reply;
    }

    // Two putters and a getter, all of them killed.
    void playLife(const std::string& name, bool isOpen,
                  std::vector<Life>& putters, std::vector<Life>& getters) {
        struct Running {
            Life life;
            std::vector<Life>* kind;
            std::unique_ptr<ChildProcess> process;
        };
        std::vector<Running> running;
        const auto add = [&](const std::string& whose, std::vector<Life>& kind,
                             const std::function<int()>& loop) {
            running.push_back(
                {{whose + name, ""},
                 &kind,
                 std::make_unique<ChildProcess>([isOpen, loop] {
                     if (!isOpen && OvMem_Init(&std::malloc, &std::free) != 0) {
                         std::cout << '!' << lastError();
                         return 1;
                     }
                     return loop();
                 })});
        };
        for (const char* client : {"a", "b"}) {
            const std::uint64_t seed = random();
            add(client, putters, [seed, client, name] {
                return putForEver(client, client + name, seed);
            });
        }
        add("getter", getters, [] { return getForEver("getter"); });
        std::shuffle(running.begin(), running.end(), random);
        auto puttersLeft = std::count_if(
            running.begin(), running.end(),
            [&](const Running& one) { return one.kind == &putters; });
        for (Running& one : running) {
            // A getter has nothing to say once nobody puts.
            if (chance(0.7) && puttersLeft > 0) {
                EXPECT_TRUE(one.process->awaitOutput(";", 60s))
                    << one.process->output() << one.process->errors();
            }
            // Any moment will do, and none is better than another.
            std::this_thread::sleep_for(std::chrono::microseconds(
                std::uniform_int_distribution<int>(0, 3000)(random)));
            one.process->kill();
            ++kills;
            EXPECT_EQ(one.process->signal(), SIGKILL)
                << one.process->output() << one.process->errors();
            one.life.output = one.process->output();
            one.kind->push_back(one.life);
            puttersLeft -= one.kind == &putters ? 1 : 0;
        }
    }

    bool chance(double probability) {
        return std::bernoulli_distribution(probability)(random);
    }

    std::mt19937_64 random;
};

}  // namespace

TEST_P(KillLoop, LosesAndDoublesNothingThatWasAnswered) {
    for (Rounds round(1, GetParam()); !HasFailure() && round.next();) {
        SCOPED_TRACE(round.how());
        playRound(round.number());
    }
    std::cout << kills << " kills, " << answered << " answered puts\n";
}

INSTANTIATE_TEST_SUITE_P(Quick, KillLoop, testing::Values(40));
INSTANTIATE_TEST_SUITE_P(Long, KillLoop, testing::Values(600));
