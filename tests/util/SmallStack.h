#ifndef TESTS_UTIL_SMALLSTACK_H
#define TESTS_UTIL_SMALLSTACK_H

#include <functional>

namespace OvMemTest {

// Runs `code` to its end on a thread with 64 KiB of stack, where a recursion
// of some thousand calls ends the process.
void onSmallStack(const std::function<void()>& code);

}  // namespace OvMemTest

#endif
