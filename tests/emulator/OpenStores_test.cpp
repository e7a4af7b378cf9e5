#include "emulator/store/OpenStores.h"

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "emulator/store/StoreError.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

class CountedStore : public OpenStore {
public:
    int closedNow = 0;
    int closedTidily = 0;

    void closeNow() noexcept override { ++closedNow; }
    void closeTidily() noexcept override { ++closedTidily; }
};

Deadline now() {
    return std::chrono::steady_clock::now();
}

std::string refusal(OpenStores& stores) {
    try {
        stores.lockUntil(now());
    } catch (const StoreError& error) {
        return error.what();
    }
    return "no refusal";
}

// Runs `work` while another thread has the lock.
void whileAnotherThreadHasIt(OpenStores& stores,
                             const std::function<void()>& work) {
    const OpenStores::Lock lock = stores.lockUntil(now());
    std::thread(work).join();
}

}  // namespace

TEST(OpenStores, AStoreIsClosedTidilyWhenItIsRemoved) {
    OpenStores stores;
    CountedStore store;
    stores.add(store, now());
    EXPECT_TRUE(stores.remove(store));
    EXPECT_EQ(store.closedTidily, 1);
    stores.atEnd();
    EXPECT_EQ(store.closedTidily, 1) << "it is no longer in the list";
    EXPECT_EQ(store.closedNow, 0);
}

TEST(OpenStores, EveryStoreIsClosedBeforeAForkAndCanBeUsedAfterIt) {
    OpenStores stores;
    CountedStore one;
    CountedStore other;
    stores.add(one, now());
    stores.add(other, now());
    stores.beforeFork();
    EXPECT_EQ(one.closedNow, 1);
    EXPECT_EQ(other.closedNow, 1);
    stores.inParent();
    EXPECT_EQ(refusal(stores), "no refusal");
    EXPECT_EQ(one.closedTidily, 0);
}

TEST(OpenStores, AtTheEndOfTheProcessTheyAreClosedAndLaterCallsAreRefused) {
    OpenStores stores;
    CountedStore store;
    stores.add(store, now());
    stores.atEnd();
    EXPECT_EQ(store.closedTidily, 1);
    EXPECT_EQ(refusal(stores),
              "The process is ending, and its event store is closed. Make the "
              "call earlier.");
}

TEST(OpenStores, ACallThatWaitsTooLongForAnotherThreadIsRefused) {
    OpenStores stores;
    whileAnotherThreadHasIt(stores, [&] {
        EXPECT_EQ(refusal(stores),
                  "Another thread of this process has used the event store for "
                  "too long, or is in the middle of a fork. Repeat the call.");
    });
    EXPECT_EQ(refusal(stores), "no refusal");
}

TEST(OpenStores, AChildForkedWhileAnotherThreadHadTheLockIsRefused) {
    OpenStores stores;
    CountedStore store;
    stores.add(store, now());
    whileAnotherThreadHasIt(stores, [&] {
        stores.inChild();
        EXPECT_EQ(refusal(stores),
                  "This process was forked while another thread used the event "
                  "store, and cannot use it any more. Fork while no thread is "
                  "using it, or start another program in the child.");
        EXPECT_FALSE(stores.remove(store));
    });
    EXPECT_EQ(store.closedTidily, 0);
}
