#include "emulator/store/ForkLock.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;

namespace {

// What tryLockFor answers on another thread, which gives the lock back.
bool isFree(ForkLock& lock) {
    bool got = false;
    std::thread([&] {
        got = lock.tryLockFor(1ms);
        if (got) {
            lock.unlock();
        }
    }).join();
    return got;
}

}  // namespace

TEST(ForkLock, OneThreadHoldsItUntilItGivesItBack) {
    ForkLock lock;
    ASSERT_TRUE(lock.tryLockUntil(std::chrono::steady_clock::now()));
    EXPECT_FALSE(isFree(lock));
    lock.unlock();
    EXPECT_TRUE(isFree(lock));
}

TEST(ForkLock, AForkHoldsItUntilTheForkIsOverInTheParentAndInTheChild) {
    ForkLock lock;
    ASSERT_TRUE(lock.beforeFork(1ms));
    EXPECT_FALSE(isFree(lock));
    lock.inParent();
    EXPECT_TRUE(isFree(lock));
    ASSERT_TRUE(lock.beforeFork(1ms));
    lock.inChild();
    EXPECT_TRUE(isFree(lock));
    EXPECT_FALSE(lock.isLost());
}

TEST(ForkLock, AForkThatDidNotGetItLeavesItToItsHolderInTheParent) {
    ForkLock lock;
    ASSERT_TRUE(lock.tryLockFor(1ms));
    std::thread([&] {
        EXPECT_FALSE(lock.beforeFork(1ms));
        lock.inParent();
    }).join();
    EXPECT_FALSE(isFree(lock));
    lock.unlock();
    EXPECT_TRUE(isFree(lock));
}

TEST(ForkLock, AForkThatDidNotGetItLosesItInTheChild) {
    ForkLock lock;
    ASSERT_TRUE(lock.tryLockFor(1ms));
    std::thread([&] {
        EXPECT_FALSE(lock.beforeFork(1ms));
        lock.inChild();
    }).join();
    EXPECT_TRUE(lock.isLost());
    lock.unlock();
    EXPECT_FALSE(lock.tryLockFor(1ms));
    EXPECT_FALSE(lock.tryLockUntil(std::chrono::steady_clock::now() + 1ms));
    EXPECT_FALSE(lock.beforeFork(1ms));
}
