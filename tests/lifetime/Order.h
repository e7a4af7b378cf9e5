#ifndef TESTS_LIFETIME_ORDER_H
#define TESTS_LIFETIME_ORDER_H

#include <cstddef>
#include <string>
#include <vector>

namespace OvMemTest {

// Something that happens to one of some connections, which are numbered in
// the order in which they come to be; or to the guard, whose life ends.
struct Event {
    enum Kind { Create, Copy, Assign, Use, Destroy, EndGuard };

    Kind kind;
    std::size_t connection;
    std::size_t source = 0;  // of a copy or an assignment
};

// The life of all of them, from the first creation to the last destruction.
using Order = std::vector<Event>;

// "create 0, use 0, copy 0 to 1, ..."
std::string inWords(const Order& order);

// All orders in which each of three connections is created, or copied from one
// that is alive, then used once or not at all, then destroyed.
std::vector<Order> allOrders();

// The same of two connections, in which besides, once while both are alive,
// one is assigned to the other, which may then be used, even again.
std::vector<Order> allOrdersWithAnAssignment();

// Each of these, and in each the end of the guard before each of its events.
std::vector<Order> allOrdersWithTheEndOfTheGuard();

}  // namespace OvMemTest

#endif
