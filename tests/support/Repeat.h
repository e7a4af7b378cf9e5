#ifndef TESTS_SUPPORT_REPEAT_H
#define TESTS_SUPPORT_REPEAT_H

#include <cstdint>
#include <string>

namespace OvMemTest {

// A proof of many rounds, each with a number from which all that it does
// follows. OVMEM_REPEAT=NUMBER in the environment runs this one alone.
//
//     for (Rounds round(1); round.next(); ) {
//         SCOPED_TRACE(round.how());
//         ... round.number() ...
//     }
class Rounds {
public:
    // Numbers from `first` on, at most `count` of them.
    explicit Rounds(std::uint64_t first, std::uint64_t count = UINT64_MAX);

    // False when there is no further one.
    bool next();

    std::uint64_t number() const { return current; }

    // How to run the present one alone.
    std::string how() const;

private:
    std::uint64_t current;
    std::uint64_t left;
};

}  // namespace OvMemTest

#endif
