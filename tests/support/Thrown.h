#ifndef TESTS_SUPPORT_THROWN_H
#define TESTS_SUPPORT_THROWN_H

#include <functional>
#include <iosfwd>
#include <string>

namespace OvMemTest {

// What left a piece of code by way of an exception, in a form to compare:
//
//     EXPECT_EQ(thrownBy([&] { connection.getStatus(); }),
//               (Thrown{"OvMEMConnectionException", -1, "..."}));
struct Thrown {
    // The exact type of the thrown object, without its namespace; with "*" if
    // a pointer was thrown. "nothing" if nothing was.
    std::string type;
    int code = 0;         // of a client exception
    std::string message;  // of any exception that bears one

    bool operator==(const Thrown&) const = default;
};

const Thrown nothingThrown{"nothing", 0, ""};

// Runs `code`. A pointer to an OvMEMProtocolException is read and deleted.
Thrown thrownBy(const std::function<void()>& code);

std::ostream& operator<<(std::ostream& stream, const Thrown& thrown);

}  // namespace OvMemTest

#endif
