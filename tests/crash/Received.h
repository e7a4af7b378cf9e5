#ifndef TESTS_CRASH_RECEIVED_H
#define TESTS_CRASH_RECEIVED_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace OvMemTest {

// Expects of the events `all` those of one putForEver to be there, each once
// and in order: all that were answered, and at most one more. Returns how many
// were answered.
std::uint64_t expectArrivals(const std::string& all, const std::string& name,
                             const std::string& output);

// What a client got, process after process, beside what there was to get. A
// process that was killed before it said that a get is complete may or may not
// have completed it: then the next one gets the same again, or what follows.
class Received {
public:
    explicit Received(std::string events);

    // The output of one getForEver.
    void addOutput(const std::string& output);

    // What was left at the end.
    void addRest(const std::string& text);

private:
    void add(const std::string& text);

    const std::string all;
    std::size_t at = 0;      // so many bytes were got, and that is complete
    std::size_t unsure = 0;  // so many more may be
};

}  // namespace OvMemTest

#endif
