#ifndef TESTS_LIFETIME_ORDER_H
#define TESTS_LIFETIME_ORDER_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace OvMemTest {

// Something that happens to one of three connections, which are numbered in
// the order in which they come to be.
struct Event {
    enum Kind { Create, Copy, Use, Destroy };

    Kind kind;
    std::size_t connection;
    std::size_t source = 0;  // of a copy
};

// The life of three connections, from the first creation to the last
// destruction.
using Order = std::vector<Event>;

// "create 0, use 0, copy 0 to 1, ..."
std::string inWords(const Order& order);

// All orders in which each of the three is created, or copied from one that
// is alive, then used, then destroyed.
std::vector<Order> allOrders();

}  // namespace OvMemTest

#endif
