#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "emulator/store/GatePassage.h"
#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/NumberedEvents.h"
#include "tests/emulator/StoppedHolder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;
using OvMemTest::firstNumbers;
using OvMemTest::pump;
using OvMemTest::StoppedHolder;
using OvMemTest::valve;
using OvMemTest::waitToBeKilled;
using testing::ElementsAre;

namespace {

// "sender:1;sender:2;..." by sender, in the order of arrival.
using Arrivals = std::map<std::string, std::vector<int>>;

void addArrivals(Arrivals& arrivals, const std::string& events) {
    std::istringstream stream(events);
    for (std::string event; std::getline(stream, event, ';');) {
        const auto colon = event.find(':');
        arrivals[event.substr(0, colon)].push_back(
            std::stoi(event.substr(colon + 1)));
    }
}

std::string take(SqliteStore& store, const Identity& client) {
    const PendingEvents got = store.getEvents(client).value();
    if (!got.text.empty()) {
        store.consume(client, got.upto);
    }
    return got.text;
}

class SqliteStoreProcesses : public testing::Test {
protected:
    // That `step` ends in another process only once the gate is free.
    void expectToWaitAtTheGate(const std::function<void(SqliteStore&)>& step);

    OvMemTest::TemporaryFolder folder;
    const SqliteOptions options{folder.file("events.db")};
};

void SqliteStoreProcesses::expectToWaitAtTheGate(
    const std::function<void(SqliteStore&)>& step) {
    auto turn = std::make_unique<GatePassage>(folder.file("turn"));
    ChildProcess child([&, this] {
        SqliteStore store(options);
        std::cout << "ready" << std::endl;
        { const GatePassage wait(folder.file("turn")); }
        std::cout << "begins" << std::endl;
        step(store);
        std::cout << "ends" << std::endl;
        return 0;
    });
    ASSERT_TRUE(child.awaitOutput("ready", 10s)) << child.errors();
    auto gate = std::make_unique<GatePassage>(options.path + ".gate");
    turn.reset();
    ASSERT_TRUE(child.awaitOutput("begins", 10s)) << child.errors();
    EXPECT_FALSE(child.awaitOutput("ends", 300ms));
    gate.reset();
    EXPECT_TRUE(child.awaitOutput("ends", 10s)) << child.errors();
    EXPECT_TRUE(child.awaitEnd(10s));
}

}  // namespace

TEST_F(SqliteStoreProcesses, WhatOneProcessPutsAnotherOneGets) {
    ChildProcess child([this] {
        SqliteStore store(options);
        store.registerClient(pump);
        std::cout << "registered" << std::endl;
        while (store.putEvents(pump, "")->size() < 2) {
            std::this_thread::yield();
        }
        store.putEvents(pump, "from afar");
        return 0;
    });
    ASSERT_TRUE(child.awaitOutput("registered", 10s)) << child.errors();
    SqliteStore store(options);
    EXPECT_THAT(*store.registerClient(valve), ElementsAre("pump", "valve"));
    ASSERT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 0);
    EXPECT_EQ(take(store, valve), "from afar");
}

TEST_F(SqliteStoreProcesses, AProcessKilledAfterItsGetLosesNothing) {
    {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
        store.putEvents(pump, "one");
        store.putEvents(pump, "two");
    }
    ChildProcess child([this] {
        SqliteStore store(options);
        std::cout << store.getEvents(valve)->text << std::endl;
        waitToBeKilled();
        return 0;
    });
    ASSERT_TRUE(child.awaitOutput("onetwo\n", 10s)) << child.errors();
    child.kill();
    SqliteStore store(options);
    EXPECT_EQ(take(store, valve), "onetwo");
}

TEST_F(SqliteStoreProcesses, AProcessKilledWhilePuttingLosesNothingItWasTold) {
    {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
    }
    ChildProcess child([this] {
        SqliteStore store(options);
        for (int i = 0;; ++i) {
            store.putEvents(pump, "pump:" + std::to_string(i) + ";");
            std::cout << "put " << i << std::endl;
        }
        return 0;
    });
    ASSERT_TRUE(child.awaitOutput("put 20\n", 10s)) << child.errors();
    child.kill();
    const std::string& told = child.output();
    const auto lastLine = told.rfind("put ", told.rfind('\n'));
    const int acknowledged = std::stoi(told.substr(lastLine + 4));
    SqliteStore store(options);
    Arrivals arrivals;
    addArrivals(arrivals, take(store, valve));
    const auto count = static_cast<int>(arrivals["pump"].size());
    EXPECT_GE(count, acknowledged + 1);
    EXPECT_EQ(arrivals["pump"], firstNumbers(count));
}

TEST_F(SqliteStoreProcesses, ManyPuttersAndOneGetterLoseAndDoubleNothing) {
    constexpr int putters = 4;
    constexpr int puts = 60;
    SqliteStore store(options);
    store.registerClient(valve);
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int putter = 0; putter < putters; ++putter) {
        children.push_back(std::make_unique<ChildProcess>([this, putter] {
            const std::string name = "pump" + std::to_string(putter);
            SqliteStore own(options);
            own.registerClient({"plant", name});
            for (int i = 0; i < puts; ++i) {
                own.putEvents({"plant", name},
                              name + ":" + std::to_string(i) + ";");
            }
            return 0;
        }));
    }
    Arrivals arrivals;
    for (const auto& child : children) {
        while (!child->awaitEnd(1ms)) {
            addArrivals(arrivals, take(store, valve));
        }
        EXPECT_EQ(child->exitStatus(), 0) << child->errors();
    }
    addArrivals(arrivals, take(store, valve));
    EXPECT_EQ(arrivals.size(), static_cast<std::size_t>(putters));
    for (const auto& [name, numbers] : arrivals) {
        EXPECT_EQ(numbers, firstNumbers(puts)) << name;
    }
}

TEST_F(SqliteStoreProcesses, ManyMayOpenTheSameNewFileAtTheSameMoment) {
    constexpr int processes = 8;
    std::vector<std::unique_ptr<ChildProcess>> children;
    {
        const GatePassage start(folder.file("start"));
        for (int i = 0; i < processes; ++i) {
            children.push_back(std::make_unique<ChildProcess>([this, i] {
                std::cout << "ready" << std::endl;
                { const GatePassage wait(folder.file("start")); }
                SqliteStore store(options);
                store.registerClient({"plant", std::to_string(i)});
                return 0;
            }));
        }
        for (const auto& child : children) {
            ASSERT_TRUE(child->awaitOutput("ready", 10s)) << child->errors();
        }
        EXPECT_FALSE(std::filesystem::exists(options.path));
    }
    for (const auto& child : children) {
        EXPECT_TRUE(child->awaitEnd(30s));
        EXPECT_EQ(child->exitStatus(), 0) << child->errors();
    }
    SqliteStore store(options);
    EXPECT_THAT(*store.registerClient(valve),
                ElementsAre("0", "1", "2", "3", "4", "5", "6", "7", "valve"));
}

TEST_F(SqliteStoreProcesses, TheGateIsShutUntilItsHolderIsKilled) {
    const std::string gate = folder.file("gate");
    ChildProcess holder([&gate] {
        const GatePassage passage(gate);
        std::cout << "inside" << std::endl;
        waitToBeKilled();
        return 0;
    });
    ASSERT_TRUE(holder.awaitOutput("inside", 10s)) << holder.errors();
    ChildProcess waiter([&gate] {
        std::cout << "waits" << std::endl;
        const GatePassage passage(gate);
        std::cout << "passed" << std::endl;
        return 0;
    });
    ASSERT_TRUE(waiter.awaitOutput("waits\n", 10s)) << waiter.errors();
    EXPECT_FALSE(waiter.awaitOutput("passed", 300ms));
    holder.kill();
    EXPECT_TRUE(waiter.awaitOutput("passed", 10s)) << waiter.errors();
}

TEST_F(SqliteStoreProcesses, ALargeLogOfAProcessThatWasKilledIsCutByTheNext) {
    {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
    }
    const std::string large(6 * 1024 * 1024, 'x');
    ChildProcess child([&] {
        SqliteStore store(options);
        store.putEvents(pump, large);
        std::_Exit(0);
        return 0;
    });
    ASSERT_TRUE(child.awaitEnd(30s));
    ASSERT_GE(std::filesystem::file_size(options.path + "-wal"), large.size());
    SqliteStore store(options);
    EXPECT_TRUE(store.getEvents(valve)->text == large);
    EXPECT_EQ(std::filesystem::file_size(options.path + "-wal"), 0U);
}

TEST_F(SqliteStoreProcesses, ALargeLogThatSomebodyReadsIsLeftWithoutAWait) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    SQLite::Database reader(options.path);
    reader.exec("BEGIN");
    reader.execAndGet("SELECT count(*) FROM event");
    const std::string large(6 * 1024 * 1024, 'x');
    store.putEvents(pump, large);
    SqliteOptions other = options;
    other.busyTimeoutMilliseconds = 60000;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(SqliteStore(other).getEvents(valve)->text == large);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    EXPECT_GE(std::filesystem::file_size(options.path + "-wal"), large.size());
}

TEST_F(SqliteStoreProcesses, ALogIsShortAgainAfterALargeEvent) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    store.putEvents(pump, std::string(9 * 1024 * 1024, 'x'));
    store.putEvents(pump, "small");
    store.putEvents(pump, "small");
    EXPECT_LE(std::filesystem::file_size(options.path + "-wal"),
              4U * 1024 * 1024);
}

TEST_F(SqliteStoreProcesses, AStoppedHolderOfTheGateStopsNoReader) {
    {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
        store.putEvents(pump, "open");
    }
    StoppedHolder holder(options.path + ".gate");
    SqliteOptions impatient = options;
    impatient.busyTimeoutMilliseconds = 100;
    SqliteStore store(impatient);
    EXPECT_EQ(store.getEvents(valve)->text, "open");
    EXPECT_THAT(*store.sharedClients(pump), ElementsAre("pump", "valve"));
    try {
        store.putEvents(pump, "lost");
        ADD_FAILURE() << "passed a gate that is closed";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.what(), holder.timeoutText());
    }
    EXPECT_EQ(store.getEvents(valve)->text, "open");
}

TEST_F(SqliteStoreProcesses, TheRegistrationThatMakesAStoreWaitsAtTheGate) {
    expectToWaitAtTheGate(
        [](SqliteStore& store) { store.registerClient(pump); });
    SqliteStore store(options);
    EXPECT_THAT(*store.sharedClients(pump), ElementsAre("pump"));
}

TEST_F(SqliteStoreProcesses, APutWaitsAtTheGate) {
    {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
    }
    expectToWaitAtTheGate(
        [](SqliteStore& store) { store.putEvents(pump, "pump:0;"); });
    SqliteStore store(options);
    EXPECT_EQ(take(store, valve), "pump:0;");
}

TEST_F(SqliteStoreProcesses, AClosingWaitsAtTheGateForAMoment) {
    auto store = std::make_unique<SqliteStore>(options);
    store->registerClient(pump);
    const GatePassage passage(options.path + ".gate");
    const auto start = std::chrono::steady_clock::now();
    store.reset();
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, 1s);
    EXPECT_LT(waited, 10s);
    EXPECT_TRUE(std::filesystem::exists(options.path + "-wal"));
}

TEST_F(SqliteStoreProcesses, AForkedChildPutsIntoTheStoreOfItsParent) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    store.putEvents(pump, "pump:0;");
    ChildProcess child([&store] {
        store.putEvents(pump, "pump:1;");
        return 0;
    });
    ASSERT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    store.putEvents(pump, "pump:2;");
    EXPECT_EQ(take(store, valve), "pump:0;pump:1;pump:2;");
}

TEST_F(SqliteStoreProcesses, AForkedChildHoldsLocksOfItsOwn) {
    auto store = std::make_unique<SqliteStore>(options);
    store->registerClient(pump);
    store->registerClient(valve);
    auto blocked = std::make_unique<GatePassage>(folder.file("turn"));
    ChildProcess child([&, this] {
        store->putEvents(pump, "pump:0;");
        std::cout << "open" << std::endl;
        { const GatePassage wait(folder.file("turn")); }
        store->putEvents(pump, "pump:1;");
        return 0;
    });
    ASSERT_TRUE(child.awaitOutput("open", 10s)) << child.errors();
    store.reset();
    // The child still has the file open, so its log must not be taken away.
    EXPECT_TRUE(std::filesystem::exists(options.path + "-wal"));
    SqliteStore(options).open();
    EXPECT_TRUE(std::filesystem::exists(options.path + "-wal"));
    blocked.reset();
    ASSERT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    SqliteStore later(options);
    EXPECT_EQ(take(later, valve), "pump:0;pump:1;");
}

TEST_F(SqliteStoreProcesses, AForkWhileThreadsPutLeavesTheChildUsable) {
    SqliteStore store(options);
    store.registerClient(pump);
    store.registerClient(valve);
    std::atomic<bool> stop = false;
    int puts = 0;
    std::thread putter([&] {
        while (!stop) {
            store.putEvents(pump, "pump:" + std::to_string(puts++) + ";");
        }
    });
    constexpr int children = 20;
    for (int i = 0; i < children; ++i) {
        ChildProcess child([&store, i] {
            store.putEvents(pump, "child:" + std::to_string(i) + ";");
            // Without a search for leaks: what the putter had at hand belongs
            // to nobody here.
            std::_Exit(0);
            return 0;
        });
        EXPECT_TRUE(child.awaitEnd(10s)) << "child " << i;
        EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    }
    stop = true;
    putter.join();
    Arrivals arrivals;
    addArrivals(arrivals, take(store, valve));
    EXPECT_EQ(arrivals["pump"], firstNumbers(puts));
    EXPECT_EQ(arrivals["child"], firstNumbers(children));
}

TEST_F(SqliteStoreProcesses, ThreadsShareOneStore) {
    SqliteStore store(options);
    store.registerClient(valve);
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&store, number] {
            const std::string name = "pump" + std::to_string(number);
            store.registerClient({"plant", name});
            for (int i = 0; i < 25; ++i) {
                store.putEvents({"plant", name},
                                name + ":" + std::to_string(i) + ";");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    Arrivals arrivals;
    addArrivals(arrivals, take(store, valve));
    EXPECT_EQ(arrivals.size(), 4U);
    for (const auto& [name, numbers] : arrivals) {
        EXPECT_EQ(numbers, firstNumbers(25)) << name;
    }
}
