#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreVerification.h"
#include "tests/emulator/Clients.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;
using OvMemTest::pump;
using OvMemTest::valve;

// A process forks workers with its store open and ends before them or after
// them, again and again; everybody says what the store has acknowledged.

namespace {

// "who:text" lines, by who.
std::map<std::string, std::string> byWho(const std::string& lines) {
    std::map<std::string, std::string> result;
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);) {
        result[line.substr(0, line.find(':'))] += line + "\n";
    }
    return result;
}

// In one piece, since several processes write to the same pipe.
void say(const std::string& line) {
    if (::write(STDOUT_FILENO, line.data(), line.size()) < 0) {
        std::abort();
    }
}

// One round: what the first process and its workers do, drawn beforehand.
struct Round {
    explicit Round(std::mt19937_64& random)
        : parentLast(random() % 2 == 0),
          inTurn(random() % 2 == 0),
          parentPutsFirst(random() % 2 == 0) {
        for (std::size_t worker = 0; worker < 1 + random() % 3; ++worker) {
            workers.push_back(
                {1 + random() % 3, random() % 2 == 0, random() % 2 == 0});
        }
    }

    struct Worker {
        std::uint64_t puts;
        bool orderly;      // ends by exit
        bool afterParent;  // puts when the parent has ended
    };
    bool parentLast;
    bool inTurn;  // the workers
    bool parentPutsFirst;
    std::vector<Worker> workers;
};

class ForkRounds : public testing::Test {
protected:
    void runRounds(std::uint64_t seed, int rounds) {
        const OvMemTest::TemporaryFolder folder;
        const SqliteOptions options{folder.file("events.db"),
                                    Synchronous::normal};
        {
            SqliteStore store(options);
            store.registerClient(pump);
            store.registerClient(valve);
        }
        std::mt19937_64 random(seed);
        for (int number = 0; number < rounds; ++number) {
            const Round round(random);
            ASSERT_NO_FATAL_FAILURE(runRound(options, round))
                << "seed " << seed << ", round " << number;
            ASSERT_FALSE(HasFailure())
                << "seed " << seed << ", round " << number;
        }
        EXPECT_EQ(verifyStore(options), std::vector<std::string>());
    }

private:
    // What was acknowledged is what valve gets.
    static void runRound(const SqliteOptions& options, const Round& round) {
        ChildProcess parent([&] {
            SqliteStore store(options);
            act(store, round);
            return 0;
        });
        for (std::size_t i = 0; i < round.workers.size(); ++i) {
            ASSERT_TRUE(parent.awaitOutput(
                "end of worker " + std::to_string(i) + "\n", 60s))
                << parent.output() << parent.errors();
        }
        ASSERT_TRUE(parent.awaitEnd(60s));
        std::string said = parent.output();
        for (std::size_t i = 0; i < round.workers.size(); ++i) {
            const std::string end = "end of worker " + std::to_string(i) + "\n";
            said.erase(said.find(end), end.size());
        }
        EXPECT_EQ(byWho(take(options)), byWho(said));
    }

    static std::string take(const SqliteOptions& options) {
        SqliteStore store(options);
        const PendingEvents got = store.getEvents(valve).value();
        store.consume(valve, got.upto);
        return got.text;
    }

    static void put(SqliteStore& store, const std::string& line) {
        store.putEvents(pump, line);
        say(line);
    }

    static void act(SqliteStore& store, const Round& round) {
        const pid_t self = ::getpid();
        if (round.parentPutsFirst) {
            put(store, "parent:before\n");
        } else {
            store.open();
        }
        for (std::size_t i = 0; i < round.workers.size(); ++i) {
            const pid_t worker = ::fork();
            if (worker == 0) {
                work(store, round, i, self);
            }
            if (round.inTurn && round.parentLast) {
                ::waitpid(worker, nullptr, 0);
            }
        }
        if (round.parentLast) {
            while (::wait(nullptr) > 0) {
            }
            put(store, "parent:after\n");
        }
    }

    [[noreturn]] static void work(SqliteStore& store, const Round& round,
                                  std::size_t number, pid_t parent) {
        const Round::Worker& self = round.workers.at(number);
        while (!round.parentLast && self.afterParent && ::getppid() == parent) {
            std::this_thread::yield();
        }
        const std::string name = "worker " + std::to_string(number);
        for (std::uint64_t i = 0; i < self.puts; ++i) {
            put(store, name + ":" + std::to_string(i) + "\n");
        }
        say("end of " + name + "\n");
        if (self.orderly) {
            std::exit(0);
        }
        ::_exit(0);
    }
};

using LongForkRounds = ForkRounds;

}  // namespace

TEST_F(ForkRounds, LoseAndDoubleNothing) {
    runRounds(1, 40);
}

TEST_F(LongForkRounds, LoseAndDoubleNothing) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        runRounds(seed, 200);
    }
}
