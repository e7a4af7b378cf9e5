#ifndef TESTS_EMULATOR_RANDOMSTEPS_H
#define TESTS_EMULATOR_RANDOMSTEPS_H

#include <cstddef>
#include <cstdint>
#include <random>

#include "tests/emulator/StoreModel.h"

namespace OvMemTest {

// Steps of a few clients of a few servers, at random: the same for the same
// seed.
class RandomSteps {
public:
    explicit RandomSteps(std::uint64_t seed) : random(seed) {}

    // A complete is of one of the last of `gets` gets.
    StoreStep next(std::size_t gets);

    // One that needs no get before it.
    StoreStep nextWithoutComplete() { return next(0); }

    std::size_t below(std::size_t limit) { return random() % limit; }

private:
    StoreStep::Kind kind(std::size_t gets);
    std::string events();

    std::mt19937_64 random;
};

}  // namespace OvMemTest

#endif
