#ifndef TESTS_CRASH_LOOPING_H
#define TESTS_CRASH_LOOPING_H

#include <cstdint>
#include <string>

namespace OvMemTest {

// What a process does until it is killed, over the started transport, as a
// client of the server "plant". Both return only when a call fails, with a
// status other than 0, after "!" and its text on standard output.

// Puts "NAME.0;", "NAME.1;" and so on, some of them large, and lists and gets
// between; one that leaves now and then registers again at once. Writes ";"
// after each put that was answered.
enum class Registered { always, nowAndThen };
int putForEver(const std::string& client, const std::string& name,
               std::uint64_t seed,
               Registered registered = Registered::nowAndThen);

// Gets. Writes the length of what came, ":", what came, and ";" when the get is
// complete.
int getForEver(const std::string& client);

}  // namespace OvMemTest

#endif
