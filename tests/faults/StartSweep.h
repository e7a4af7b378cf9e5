#ifndef TESTS_FAULTS_STARTSWEEP_H
#define TESTS_FAULTS_STARTSWEEP_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/Thrown.h"

namespace OvMemTest {

// A way to start the XML platform.
class PlatformStart {
public:
    virtual ~PlatformStart() = default;

    // On a heap that fails.
    virtual void start() = 0;

    // With memory enough, after the start has ended as `thrown`: uses what has
    // been started. Returns what came of it all in a few words, which are to
    // be looked for among those that are foreseen.
    virtual std::string use(const Thrown& thrown) = 0;
};

// Starts the platform once for each request for memory that is to be refused,
// alone or with all that follow, and each time in a process of its own.
class StartSweep {
public:
    using Outcomes = std::map<std::string, std::uint64_t>;

    explicit StartSweep(
        std::function<std::unique_ptr<PlatformStart>()> newStart);

    // How often a start asks for memory when it is refused none.
    std::uint64_t positions() const;

    // How often a start ended in which way: as it says itself, or "panic" when
    // the XML library ended the process with exit status 255.
    Outcomes refuseEach(bool andAllAfter) const;

    // Only the first and the last twenty, and in between one in `stride`.
    Outcomes refuseSome(std::uint64_t stride, bool andAllAfter) const;

private:
    std::function<std::unique_ptr<PlatformStart>()> make;
    std::uint64_t count;
};

// What is wrong with a registration after a start, a line each: it has to
// succeed or, where the start had failed, to find its reply refused.
std::string complaintsOfRegistration(bool platformRuns);

}  // namespace OvMemTest

#endif
