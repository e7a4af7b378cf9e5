#ifndef TESTS_FAULTS_ALLOCATIONSWEEP_H
#define TESTS_FAULTS_ALLOCATIONSWEEP_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/faults/SweptOperations.h"

namespace OvMemTest {

// What a sweep found out.
struct SweepResult {
    std::uint64_t positions = 0;  // requests for memory of one run

    // How often a run ended in which way: a type of exception or "nothing".
    std::map<std::string, std::uint64_t> outcomes;

    // Runs after which the XML library had lost memory, and how much in all, by
    // the function of it that was called.
    std::uint64_t lossyRuns = 0;
    std::map<std::string, std::uint64_t> lostBlocks;

    // One line each. Must be empty.
    std::vector<std::string> complaints;
};

// Runs an operation again and again, each time with a later request for memory
// refused, until none is left: only that one, or with all that follow.
//
// A complaint is a crash, a block that was lost by anybody but the XML library,
// an unforeseen exception, a result or a state that is neither that of success
// nor that of before, and a connection that is of no more use afterwards.
//
// The work is done in a child process. If that dies at one request, another one
// goes on with the next.
SweepResult sweepAllocations(const SweptOperation& operation, bool andAllAfter);

}  // namespace OvMemTest

#endif
