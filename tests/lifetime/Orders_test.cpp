#include <chrono>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/lifetime/Order.h"
#include "tests/lifetime/OrderRun.h"
#include "tests/support/ChildProcess.h"

namespace OvMemTest {

namespace {

using Orders = std::vector<Order>;

// In a child.
int live(const Order& order, bool guarded) {
    const std::string complaints = OrderRun(guarded).complaints(order);
    std::cout << (complaints.empty() ? "as documented" : complaints);
    return 0;
}

// An order that is lived through in a process of its own.
class Life {
public:
    Life(const Order& lived, bool guarded)
        : order(lived),
          child([this, guarded] { return live(order, guarded); }) {}

    void expectAsDocumented() {
        EXPECT_TRUE(child.awaitEnd(std::chrono::seconds(60)));
        child.kill();
        EXPECT_EQ(child.exitStatus(), 0) << inWords(order) << child.errors();
        EXPECT_EQ(child.output(), "as documented") << inWords(order);
    }

private:
    const Order& order;
    ChildProcess child;
};

// Two at a time.
void liveAll(const Orders& orders, bool guarded) {
    std::unique_ptr<Life> previous;
    for (const Order& order : orders) {
        auto next = std::make_unique<Life>(order, guarded);
        if (previous) {
            previous->expectAsDocumented();
        }
        previous = std::move(next);
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    previous->expectAsDocumented();
    std::cout << orders.size() << " orders\n";
}

// Every fifth one.
Orders sampleOf(const Orders& orders) {
    Orders sample;
    for (std::size_t i = 0; i < orders.size(); i += 5) {
        sample.push_back(orders[i]);
    }
    return sample;
}

void expectAllDifferent(const Orders& orders, std::size_t count,
                        const std::string& oneOfThem) {
    std::set<std::string> names;
    for (const Order& order : orders) {
        names.insert(inWords(order));
    }
    EXPECT_EQ(orders.size(), count);
    EXPECT_EQ(names.size(), count);
    EXPECT_TRUE(names.contains(oneOfThem)) << oneOfThem;
}

}  // namespace

TEST(Orders, AreAllDifferentAndMany) {
    expectAllDifferent(
        allOrders(), 3456,
        "create 0, use 0, copy 0 to 1, destroy 0, use 1, create 2, destroy 2, "
        "destroy 1");
    expectAllDifferent(allOrdersWithAnAssignment(), 230,
                       "create 0, create 1, use 1, assign 0 to 1, use 1, "
                       "destroy 1, use 0, destroy 0");
    expectAllDifferent(allOrdersWithTheEndOfTheGuard(), 1618,
                       "create 0, copy 0 to 1, end the guard, assign 1 to 0, "
                       "use 0, destroy 0, use 1, destroy 1");
}

TEST(Orders, WithoutAGuardTheFirstDestroyedEndsThePlatformInEach) {
    liveAll(sampleOf(allOrders()), false);
}

TEST(Orders, WithTheGuardThePlatformStaysInEach) {
    liveAll(sampleOf(allOrders()), true);
}

TEST(Orders, WithTheGuardGoneTheFirstDestroyedEndsThePlatformInEach) {
    liveAll(sampleOf(allOrdersWithTheEndOfTheGuard()), true);
}

TEST(Orders, AnAssignmentNeitherStartsNorEndsThePlatform) {
    liveAll(allOrdersWithAnAssignment(), false);
    liveAll(allOrdersWithAnAssignment(), true);
}

// The same of all of them.

TEST(LongOrders, WithoutAGuardTheFirstDestroyedEndsThePlatformInEach) {
    liveAll(allOrders(), false);
}

TEST(LongOrders, WithTheGuardThePlatformStaysInEach) {
    liveAll(allOrders(), true);
}

TEST(LongOrders, WithTheGuardGoneTheFirstDestroyedEndsThePlatformInEach) {
    liveAll(allOrdersWithTheEndOfTheGuard(), true);
}

}  // namespace OvMemTest
