#ifndef TESTS_FAULTS_SWEPTRUN_H
#define TESTS_FAULTS_SWEPTRUN_H

#include <cstdint>
#include <string>

#include "tests/faults/FailingHeap.h"
#include "tests/faults/SweptOperations.h"

namespace OvMemTest {

// One run of an operation on a heap that fails, and then the same once more on
// the same connection with memory enough. Afterwards FailingHeap knows what is
// still held of the first of them, although everything has been given back.
struct SweptRun {
    SweptRun(const SweptOperation& operation, FailingHeap::Plan plan);

    // What is wrong with it, a line each.
    std::string complaints(const SweptOperation& operation) const;

    Thrown thrown;
    std::uint64_t refused = 0;

private:
    bool leftInOrder(const SweptOperation& operation) const;

    std::uint64_t failedAt;
    ConnectionState state;
    CallerValues caller;
    Thrown nextThrown;
    ConnectionState nextState;
    CallerValues nextCaller;
};

}  // namespace OvMemTest

#endif
