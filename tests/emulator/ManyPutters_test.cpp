#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "emulator/store/SqliteStore.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;

// Many processes put at once while others get: nobody fails, nothing is lost,
// and how evenly they are served is printed.

namespace {

using Clock = std::chrono::steady_clock;

// The end of a pipe. It is given when no process has the other end open.
class StartSignal {
public:
    StartSignal() {
        if (::pipe(ends.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
    }
    ~StartSignal() {
        ::close(ends[0]);
        give();
    }
    StartSignal(const StartSignal&) = delete;
    StartSignal& operator=(const StartSignal&) = delete;

    void give() {
        if (ends[1] >= 0) {
            ::close(ends[1]);
            ends[1] = -1;
        }
    }

    // In a child. Every other child gives it, too.
    void await() {
        give();
        char byte = 0;
        while (::read(ends[0], &byte, 1) > 0) {
        }
    }

private:
    std::array<int, 2> ends{};
};

class ManyPutters : public testing::Test {
protected:
    void run(int putterCount, int putCount, int getterCount) {
        puts = putCount;
        all = putterCount * putCount;
        {
            SqliteStore store(options);
            for (int getter = 0; getter < getterCount; ++getter) {
                store.registerClient(identity("getter", getter));
            }
        }
        std::vector<std::unique_ptr<ChildProcess>> putters;
        std::vector<std::unique_ptr<ChildProcess>> getters;
        for (int i = 0; i < putterCount; ++i) {
            putters.push_back(
                std::make_unique<ChildProcess>([this, i] { return put(i); }));
        }
        for (int i = 0; i < getterCount; ++i) {
            getters.push_back(
                std::make_unique<ChildProcess>([this, i] { return get(i); }));
        }
        for (const auto& putter : putters) {
            ASSERT_TRUE(putter->awaitOutput("ready", 60s));
        }
        start.give();
        std::vector<double> seconds;
        for (const auto& putter : putters) {
            ASSERT_TRUE(putter->awaitEnd(10min));
            ASSERT_EQ(putter->exitStatus(), 0) << putter->errors();
            seconds.push_back(std::stod(putter->output().substr(6)));
        }
        for (const auto& getter : getters) {
            ASSERT_TRUE(getter->awaitEnd(10min));
            EXPECT_EQ(getter->exitStatus(), 0)
                << getter->output() << getter->errors();
        }
        const auto [fastest, slowest] =
            std::minmax_element(seconds.begin(), seconds.end());
        std::cout << putterCount << " putters of " << puts << " puts, "
                  << getterCount << " getters: the slowest putter " << *slowest
                  << " s, the fastest " << *fastest << " s, ratio "
                  << *slowest / *fastest << std::endl;
    }

private:
    static Identity identity(const std::string& kind, int number) {
        return {"plant", kind + std::to_string(number)};
    }

    int put(int number) {
        const Identity self = identity("putter", number);
        SqliteStore store(options);
        store.registerClient(self);
        std::cout << "ready" << std::endl;
        start.await();
        const auto begin = Clock::now();
        for (int i = 0; i < puts; ++i) {
            store.putEvents(self,
                            self.clientId + " " + std::to_string(i) + "\n");
        }
        std::cout << std::chrono::duration<double>(Clock::now() - begin).count()
                  << std::endl;
        return 0;
    }

    // Gets until it has everything; each putter's events have to be in order.
    int get(int number) {
        start.give();
        const Identity self = identity("getter", number);
        SqliteStore store(options);
        std::map<std::string, int> next;
        const auto limit = Clock::now() + 10min;
        for (int count = 0; count < all;) {
            const PendingEvents got = store.getEvents(self).value();
            if (got.text.empty()) {
                ::usleep(1000);
            } else {
                store.consume(self, got.upto);
            }
            std::istringstream events(got.text);
            std::string putter;
            for (int event = 0; events >> putter >> event; ++count) {
                if (event != next[putter]++) {
                    std::cout << putter << ": unexpected " << event;
                    return 1;
                }
            }
            if (Clock::now() > limit) {
                std::cout << "has " << count << " events";
                return 2;
            }
        }
        return store.getEvents(self)->text.empty() ? 0 : 3;
    }

    OvMemTest::TemporaryFolder folder;
    const SqliteOptions options{folder.file("events.db")};
    StartSignal start;
    int puts = 0;
    int all = 0;
};

using LongManyPutters = ManyPutters;

}  // namespace

TEST_F(ManyPutters, AndGettersHaveNoErrorsAndGetEverythingInOrder) {
    run(10, 10, 3);
}

TEST_F(LongManyPutters, AndGettersHaveNoErrorsAndGetEverythingInOrder) {
    run(50, 200, 10);
}
