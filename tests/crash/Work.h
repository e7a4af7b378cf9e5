#ifndef TESTS_CRASH_WORK_H
#define TESTS_CRASH_WORK_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace OvMemTest {

// What one client of the server "plant" does.
struct Step {
    enum class Kind {
        join,
        leave,
        put,
        get,
        close  // of everything, by everybody
    };

    Kind kind;
    std::string client;
    std::string text;  // of a put
};

using Work = std::vector<Step>;

// What is queued for each client; nothing for one that is not registered.
using Queues = std::map<std::string, std::optional<std::string>>;

// A bit of everything: clients that come, go and come again, events that fill
// a few bytes and a few pages, and a get of one and of several. Ends with
// close.
Work smallWork();

// The queues before the first step and after each, as the rules say: a put is
// for every other client that is registered, and a get takes everything.
// `before` are those of other clients.
std::vector<Queues> statesOf(const Work& work, const Queues& before = {});

}  // namespace OvMemTest

#endif
