#include <algorithm>
#include <chrono>
#include <iostream>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/lifetime/Order.h"
#include "tests/lifetime/OrderRun.h"
#include "tests/support/ChildProcess.h"

namespace OvMemTest {

namespace {

using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

constexpr std::size_t batch = 50;

using Orders = std::vector<Order>;

// In a child: each order begins when its name is written, so that the last
// name tells where an abort happened.
int live(Orders::const_iterator first, Orders::const_iterator last,
         bool guarded) {
    std::optional<XmlPlatformGuard> guard;
    if (guarded) {
        guard.emplace();
    }
    for (; first != last; ++first) {
        std::cout << inWords(*first) << std::endl;
        const std::string complaints = OrderRun(guarded).complaints(*first);
        if (!complaints.empty()) {
            std::cout << complaints << std::endl;
            return 1;
        }
    }
    return 0;
}

void liveAll(bool guarded) {
    const Orders orders = allOrders();
    for (auto first = orders.begin(); first != orders.end();) {
        const auto last =
            first + std::min<std::ptrdiff_t>(batch, orders.end() - first);
        ChildProcess child([&] { return live(first, last, guarded); });
        ASSERT_TRUE(child.awaitEnd(std::chrono::seconds(60))) << child.output();
        ASSERT_EQ(child.exitStatus(), 0) << child.output() << child.errors();
        ASSERT_EQ(std::ranges::count(child.output(), '\n'), last - first);
        first = last;
    }
    std::cout << orders.size() << " orders\n";
}

}  // namespace

TEST(Orders, AreAllDifferentAndMany) {
    std::set<std::string> names;
    for (const Order& order : allOrders()) {
        names.insert(inWords(order));
    }
    EXPECT_EQ(names.size(), allOrders().size());
    EXPECT_GE(names.size(), 280U);
    EXPECT_TRUE(names.contains(
        "create 0, use 0, copy 0 to 1, destroy 0, use 1, create 2, use 2, "
        "destroy 1, destroy 2"));
}

TEST(Orders, WithoutAGuardTheFirstDestroyedEndsThePlatformInEach) {
    liveAll(false);
}

TEST(Orders, WithTheGuardThePlatformStaysInEach) {
    liveAll(true);
}

}  // namespace OvMemTest
