#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/CountedHeap.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/Wire.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

using namespace OvMemTest;
using namespace std::chrono_literals;

// Starts and ends, heaps, threads and processes of OvMemBinding.

namespace {

std::int32_t start() {
    return OvMem_Init(&std::malloc, &std::free);
}

class OvMemBindingLife : public testing::Test {
protected:
    OvMemBindingLife() { environment.set("OVMEM_STORE", "memory:"); }

    void useFile() {
        environment.set("OVMEM_STORE", "sqlite:" + folder.file("events.db"));
    }

    TemporaryFolder folder;
    Environment environment;
};

}  // namespace

TEST_F(OvMemBindingLife, StartsAreCounted) {
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(request("registerClient", "plant", "pump").status, -1);
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_EQ(request("getEvents", "plant", "pump").status, -1);
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_EQ(request("getStatus", "", "").status, -3016);
}

TEST_F(OvMemBindingLife, EndsBeyondTheLastAreHarmless) {
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(request("getStatus", "", "", "echo").reply, "echo");
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_EQ(request("getStatus", "", "").status, -3016);
}

TEST_F(OvMemBindingLife, AStoreInMemoryEndsWithTheLastEnd) {
    EXPECT_EQ(start(), 0);
    request("registerClient", "plant", "pump");
    OvMem_Term();
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(request("getEvents", "plant", "pump").status, -3017);
    OvMem_Term();
}

TEST_F(OvMemBindingLife, TheEnvironmentIsReadAtTheFirstStart) {
    EXPECT_EQ(start(), 0);
    environment.set("OVMEM_STORE", "nonsense:");
    EXPECT_EQ(start(), 0);
    OvMem_Term();
    OvMem_Term();
    EXPECT_EQ(start(), 1001);
}

TEST_F(OvMemBindingLife, TheLastEndClosesTheFile) {
    useFile();
    EXPECT_EQ(start(), 0);
    request("registerClient", "plant", "pump");
    EXPECT_TRUE(std::filesystem::exists(folder.file("events.db-wal")));
    OvMem_Term();
    EXPECT_FALSE(std::filesystem::exists(folder.file("events.db-wal")));
}

TEST_F(OvMemBindingLife, AnEndForgetsTheExchange) {
    EXPECT_EQ(start(), 0);
    OvMem_SendNoAck("Half a header");
    OvMem_Term();
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(OvMem_SendEOF(), -3016);
    OvMem_Term();
}

TEST_F(OvMemBindingLife, TheHostsHeapIsUsedAndBalanced) {
    CountedHeap heap;
    EXPECT_EQ(OvMem_Init(&CountedHeap::allocate, &CountedHeap::release), 0);
    EXPECT_EQ(OvMem_SendEOF(), -3016);
    EXPECT_NE(lastError(), "(none)");
    EXPECT_EQ(heap.live(), 1U) << "the text";
    const std::string block = headerBlock("getStatus", "", "");
    EXPECT_EQ(OvMem_Send((block + "body").c_str()), 0);
    EXPECT_EQ(heap.live(), 1U) << "the request";
    EXPECT_EQ(OvMem_SendEOF(), 0);
    EXPECT_EQ(OvMem_SendEOF(), -3016);
    EXPECT_NE(lastError(), "(none)");
    EXPECT_EQ(heap.live(), 2U) << "the request and the text";
    OvMem_Term();
    EXPECT_EQ(heap.live(), 0U);
    EXPECT_GE(heap.allocations(), 3U);
}

TEST_F(OvMemBindingLife, AThreadLeavesNothingOnTheHostsHeap) {
    CountedHeap heap;
    EXPECT_EQ(OvMem_Init(&CountedHeap::allocate, &CountedHeap::release), 0);
    std::thread([&heap] {
        OvMem_SendNoAck("Half a header");
        OvMem_Receive(std::array<char, 16384>{}.data());
        EXPECT_NE(lastError(), "(none)");
        EXPECT_EQ(heap.live(), 2U);
    }).join();
    EXPECT_EQ(heap.live(), 0U);
    OvMem_Term();
}

TEST_F(OvMemBindingLife, TheLastEndGivesBackWhatOtherThreadsHave) {
    CountedHeap heap;
    EXPECT_EQ(OvMem_Init(&CountedHeap::allocate, &CountedHeap::release), 0);
    std::promise<void> halfSent;
    std::promise<void> ended;
    std::thread other([&] {
        OvMem_SendNoAck("Half a header");
        OvMem_Receive(std::array<char, 16384>{}.data());
        EXPECT_NE(lastError(), "(none)");
        halfSent.set_value();
        ended.get_future().wait();
        const std::size_t calls = heap.calls();
        EXPECT_EQ(OvMem_SendEOF(), -3016);
        EXPECT_NE(lastError(), "(none)");
        EXPECT_EQ(heap.calls(), calls);
    });
    halfSent.get_future().wait();
    EXPECT_EQ(heap.live(), 2U);
    OvMem_Term();
    EXPECT_EQ(heap.live(), 0U);
    const std::size_t calls = heap.calls();
    ended.set_value();
    other.join();
    EXPECT_EQ(heap.calls(), calls);
}

TEST_F(OvMemBindingLife, AHostWithoutMemoryIsToldSo) {
    CountedHeap heap;
    EXPECT_EQ(OvMem_Init(&CountedHeap::allocate, &CountedHeap::release), 0);
    heap.failFromNowOn();
    EXPECT_EQ(OvMem_SendNoAck("Half a header"), -3010);
    const char* text = "old";
    EXPECT_EQ(OvMem_GetLastError(&text), -3010);
    EXPECT_EQ(text, nullptr);
    OvMem_Term();
    EXPECT_EQ(heap.live(), 0U);
}

TEST_F(OvMemBindingLife, EveryThreadHasAnExchangeAndAnErrorOfItsOwn) {
    EXPECT_EQ(start(), 0);
    const std::string block = headerBlock("getStatus", "", "");
    OvMem_Send((block + "mine").c_str());
    OvMem_SendEOF();
    EXPECT_EQ(OvMem_SendEOF(), -3016);
    const std::string error = lastError();
    std::thread([&] {
        EXPECT_EQ(lastError(), "(none)");
        EXPECT_EQ(OvMem_Complete(), -3016);
        EXPECT_EQ(request("getStatus", "", "", "theirs").reply, "theirs");
    }).join();
    EXPECT_EQ(lastError(), error);
    std::array<char, 16384> buffer{};
    EXPECT_EQ(OvMem_Receive(buffer.data()), 4);
    EXPECT_EQ(std::string(buffer.data(), 4), "mine");
    OvMem_Term();
}

TEST_F(OvMemBindingLife, AnEndOnOneThreadEndsTheExchangesOfTheOthers) {
    EXPECT_EQ(start(), 0);
    OvMem_SendNoAck("Half a header");
    std::thread([] {
        OvMem_Term();
        EXPECT_EQ(start(), 0);
    }).join();
    EXPECT_EQ(OvMem_SendEOF(), -3016);
    OvMem_Term();
}

TEST_F(OvMemBindingLife, ManyThreadsMayStartUseAndEndAtTheSameTime) {
    useFile();
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number] {
            const std::string client = std::to_string(number);
            for (int i = 0; i < 10; ++i) {
                EXPECT_EQ(start(), 0);
                EXPECT_EQ(request("registerClient", "plant", client).status,
                          -1);
                EXPECT_EQ(request("getStatus", "", "", client).reply, client);
                EXPECT_EQ(OvMem_Term(), 0);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(OvMem_SendEOF(), -3016);
}

TEST_F(OvMemBindingLife, AProcessKilledBeforeCompleteLosesNothing) {
    useFile();
    ChildProcess child([] {
        start();
        request("registerClient", "plant", "pump");
        request("registerClient", "plant", "valve");
        request("putEvents", "plant", "pump", "one");
        request("putEvents", "plant", "pump", "two");
        std::cout << streamedExchange(
                         headerBlock("getEvents", "plant", "valve"), {})
                         .reply
                  << std::endl;
        for (;;) {
            ::pause();
        }
        return 0;
    });
    ASSERT_TRUE(child.awaitOutput("onetwo\n", 10s)) << child.errors();
    child.kill();
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(request("getEvents", "plant", "valve").reply, "onetwo");
    EXPECT_EQ(request("getEvents", "plant", "valve").reply, "");
    OvMem_Term();
}

TEST_F(OvMemBindingLife, AForkedChildGoesOnWithTheStartedTransport) {
    useFile();
    EXPECT_EQ(start(), 0);
    request("registerClient", "plant", "pump");
    request("registerClient", "plant", "valve");
    ChildProcess child([] {
        const Outcome outcome =
            request("putEvents", "plant", "pump", "from the child");
        std::cout << outcome.reply;
        return OvMem_Term();
    });
    EXPECT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    EXPECT_EQ(child.output(), sharedClients({"valve"}));
    EXPECT_EQ(request("getEvents", "plant", "valve").reply, "from the child");
    OvMem_Term();
}

TEST_F(OvMemBindingLife, AForkWhileAThreadStartsLeavesTheChildUsable) {
    std::atomic<bool> stop = false;
    std::thread starter([&stop] {
        while (!stop) {
            start();
            OvMem_Term();
        }
    });
    for (int i = 0; i < 20; ++i) {
        ChildProcess child([] {
            const bool started = start() == 0;
            // Without the end of a program, at which the leak sanitizer finds
            // what the other thread held: it does not live in the child.
            std::_Exit(started && OvMem_Term() == 0 ? 0 : 1);
            return 1;
        });
        EXPECT_TRUE(child.awaitEnd(10s)) << "child " << i;
        EXPECT_EQ(child.exitStatus(), 0) << child.errors();
        if (HasFailure()) {
            break;
        }
    }
    stop = true;
    starter.join();
}

TEST_F(OvMemBindingLife, AStoreThatFailsLaterIsReported) {
    useFile();
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(request("registerClient", "plant", "pump").status, -1);
    EXPECT_EQ(request("registerClient", "plant", "valve").status, -1);
    SQLite::Database(folder.file("events.db"), SQLite::OPEN_READWRITE)
        .exec("DROP TABLE event");
    EXPECT_EQ(request("putEvents", "plant", "pump", "open"),
              (Outcome{-3001, "",
                       "The event store '" + folder.file("events.db") +
                           "' cannot be used (no such table: event). Make the "
                           "file and its folder readable and writable, or set "
                           "OVMEM_STORE to another file."}));
    OvMem_Term();
}
