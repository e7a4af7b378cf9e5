#ifndef TESTS_CRASH_OBSERVED_H
#define TESTS_CRASH_OBSERVED_H

#include <cstddef>
#include <string>
#include <vector>

#include "tests/crash/Work.h"

namespace OvMemTest {

// What the store of the started transport holds for the clients of `example`;
// nothing is taken out of it.
Queues observe(const Queues& example);

// Starts the transport over a store that some work was interrupted with,
// expects it to be as after `answered` steps of that work or after one more,
// and to work: the next 50 operations, and one more event for everybody, who
// then get all that there is. `states` are those of statesOf.
void expectWholeStore(const std::string& url, const std::vector<Queues>& states,
                      std::size_t answered);

// The same with the transport started already.
void expectWholeStore(const std::vector<Queues>& states, std::size_t answered);

}  // namespace OvMemTest

#endif
