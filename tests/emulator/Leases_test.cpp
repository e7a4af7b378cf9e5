#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "emulator/store/MemoryStore.h"
#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/Getting.h"
#include "tests/emulator/NumberedEvents.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

// What is queued for a client goes to one getter at a time, whatever the store.

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;
using OvMemTest::firstNumbers;
using OvMemTest::Getting;
using OvMemTest::motor;
using OvMemTest::numbersIn;
using OvMemTest::pump;
using OvMemTest::valve;

namespace {

struct LeasesInMemory {
    explicit LeasesInMemory(LeaseTerms terms) : store({.lease = terms}) {}
    MemoryStore store;
};

SqliteOptions optionsFor(const std::string& path, LeaseTerms terms) {
    SqliteOptions options;
    options.path = path;
    options.synchronous = Synchronous::normal;
    options.busyTimeoutMilliseconds = static_cast<int>(terms.patience.count());
    options.lease = terms.limit;
    return options;
}

struct LeasesInSqlite {
    explicit LeasesInSqlite(LeaseTerms terms)
        : store(optionsFor(folder.file("events.db"), terms)) {}
    OvMemTest::TemporaryFolder folder;
    SqliteStore store;
};

template <typename Kind>
class Leases : public testing::Test {
protected:
    static void fill(EventStore& store) {
        for (const Identity& client : {pump, motor, valve}) {
            store.registerClient(client);
        }
        store.putEvents(pump, "open;");
    }
};

using LeaseStores = testing::Types<LeasesInMemory, LeasesInSqlite>;
TYPED_TEST_SUITE(Leases, LeaseStores);

constexpr LeaseTerms impatient{60s, 50ms};
constexpr LeaseTerms patient{60s, 60s};

// The numbers in "1;2;3;", ascending.
constexpr int many = 3000;

// All that is got until nothing more is put.
std::string getUntil(EventStore& store, const std::atomic<bool>& stop) {
    Getting getter(store, valve);
    std::string all;
    while (!stop) {
        all += getter.begin();
        std::this_thread::sleep_for(200us);  // while it reads the reply
        getter.complete();
    }
    return all + getter.take();
}

}  // namespace

TYPED_TEST(Leases, TwoThreadsOfOneIdentityGetEveryEventOnce) {
    TypeParam kind(patient);
    this->fill(kind.store);
    Getting(kind.store, valve).take();
    std::atomic<bool> stop = false;
    std::string first, second;
    std::thread one([&] { first = getUntil(kind.store, stop); });
    std::thread other([&] { second = getUntil(kind.store, stop); });
    for (int i = 0; i < many; ++i) {
        kind.store.putEvents(pump, std::to_string(i) + ";");
    }
    stop = true;
    one.join();
    other.join();
    EXPECT_EQ(numbersIn(first + second), firstNumbers(many));
}

TYPED_TEST(Leases, ASecondGetterIsRefusedAfterItsPatience) {
    TypeParam kind(impatient);
    this->fill(kind.store);
    Getting first(kind.store, valve);
    Getting second(kind.store, valve);
    EXPECT_EQ(first.begin(), "open;");
    const std::string refusal = second.refusal();
    EXPECT_TRUE(refusal.starts_with(
        "Another getter has the events of this client: another part of this "
        "process holds the lease"))
        << refusal;
    EXPECT_TRUE(refusal.ends_with(
        "Let it go on or end it, then repeat the call. Give every getter a "
        "client identity of its own."))
        << refusal;
    first.complete();
    EXPECT_EQ(second.take(), "");
}

TYPED_TEST(Leases, ASecondGetterWaitsAndGetsWhatIsLeft) {
    TypeParam kind(patient);
    this->fill(kind.store);
    Getting first(kind.store, valve);
    EXPECT_EQ(first.begin(), "open;");
    kind.store.putEvents(pump, "close;");
    std::string got;
    std::atomic<bool> waits = false;
    std::thread second([&] {
        Getting getter(kind.store, valve);
        waits = true;
        got = getter.take();
    });
    while (!waits) {
        std::this_thread::yield();
    }
    first.complete();
    second.join();
    EXPECT_EQ(got, "close;");
}

TYPED_TEST(Leases, AGetThatIsGivenUpLeavesTheEventsToTheNextGetter) {
    TypeParam kind(impatient);
    this->fill(kind.store);
    Getting first(kind.store, valve);
    EXPECT_EQ(first.begin(), "open;");
    first.giveUp();
    EXPECT_EQ(Getting(kind.store, valve).take(), "open;");
}

TYPED_TEST(Leases, OtherClientsAndServersAreNotKeptWaiting) {
    TypeParam kind(impatient);
    this->fill(kind.store);
    const Identity elsewhere{"office", "valve"};
    const Identity printer{"office", "printer"};
    kind.store.registerClient(elsewhere);
    kind.store.registerClient(printer);
    kind.store.putEvents(printer, "paper;");
    Getting first(kind.store, valve);
    EXPECT_EQ(first.begin(), "open;");
    EXPECT_EQ(Getting(kind.store, motor).take(), "open;");
    EXPECT_EQ(Getting(kind.store, elsewhere).take(), "paper;");
}

TYPED_TEST(Leases, WhoWaitsHoldsUpNobodyElse) {
    TypeParam kind(patient);
    this->fill(kind.store);
    Getting first(kind.store, valve);
    EXPECT_EQ(first.begin(), "open;");
    std::atomic<bool> waits = false;
    std::atomic<bool> done = false;
    std::thread second([&] {
        Getting getter(kind.store, valve);
        waits = true;
        getter.take();
        done = true;
    });
    while (!waits) {
        std::this_thread::yield();
    }
    for (int i = 0; i < 200; ++i) {
        kind.store.putEvents(pump, "more;");
        Getting(kind.store, motor).take();
    }
    EXPECT_FALSE(done);
    first.complete();
    second.join();
}

TYPED_TEST(Leases, AGetterThatIsTooSlowLosesItsLease) {
    TypeParam kind(LeaseTerms{20ms, 60s});
    this->fill(kind.store);
    Getting slow(kind.store, valve);
    EXPECT_EQ(slow.begin(), "open;");
    Getting next(kind.store, valve);
    EXPECT_EQ(next.begin(), "open;");
    kind.store.putEvents(pump, "close;");
    slow.complete();  // moves the queue on, and ends no lease but its own
    EXPECT_EQ(Getting(kind.store, valve).begin(), "close;");
    next.complete();
    EXPECT_EQ(Getting(kind.store, valve).take(), "close;");
}

TYPED_TEST(Leases, TheEndOfASlowGetterLeavesTheLeaseOfTheNext) {
    constexpr auto limit = 200ms;
    constexpr auto tick = 20ms;  // the time of a file is coarse
    TypeParam kind(LeaseTerms{limit, 60s});
    this->fill(kind.store);
    Getting slow(kind.store, valve);
    EXPECT_EQ(slow.begin(), "open;");
    std::this_thread::sleep_for(limit + tick);
    const auto start = std::chrono::steady_clock::now();
    Getting next(kind.store, valve);
    EXPECT_EQ(next.begin(), "open;");
    slow.giveUp();
    EXPECT_EQ(Getting(kind.store, valve).begin(), "open;");
    EXPECT_GE(std::chrono::steady_clock::now() - start, limit - tick);
}

TYPED_TEST(Leases, AChildIsNotTheGetterThatItsParentIs) {
    TypeParam kind(patient);
    this->fill(kind.store);
    Getting first(kind.store, valve);
    EXPECT_EQ(first.begin(), "open;");
    ChildProcess child([&] {
        first.giveUp();
        return 0;
    });
    ASSERT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    first.complete();
    EXPECT_EQ(Getting(kind.store, valve).take(), "");
}
