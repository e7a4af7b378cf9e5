#ifndef TESTS_HOSTILE_HOSTILERUN_H
#define TESTS_HOSTILE_HOSTILERUN_H

#include <string>

#include "tests/hostile/HostileReply.h"

namespace OvMemTest {

// One registration in a process of its own, answered by a hostile reply.
//
// Nothing there may open a file or make a socket. The reply is made while it
// is received, so that the memory that is measured is the library's own. It
// may grow by 256 MiB; the address and the thread sanitizer, which reserve
// terabytes, are exempt.
class HostileRun {
public:
    HostileRun(const HostileReply& reply, bool guarded);

    // Whether the process came to its end by itself; why not, else.
    bool ended() const { return failure.empty(); }
    const std::string& whyNot() const { return failure; }

    // The exact type of what was thrown; "nothing" if nothing was.
    const std::string& thrown() const { return type; }
    const Fate& fate() const { return outcome; }

    // What it took.
    double seconds() const { return processorTime; }
    double mebibytes() const { return growth; }

    // What the XML library still held of its guarded memory, in bytes.
    long long lost() const { return loss; }

private:
    std::string failure;
    std::string type;
    Fate outcome;
    double processorTime = 0;
    double growth = 0;
    long long loss = 0;
};

}  // namespace OvMemTest

#endif
