#ifndef TESTS_CLIENT_WITHOUTCONVERTERS_H
#define TESTS_CLIENT_WITHOUTCONVERTERS_H

#include <functional>

namespace OvMemTest {

// Runs the rest of a test in a process of its own in which ICU gets no memory,
// so that no converter can be opened.
void withoutConverters(const std::function<void()>& rest);

// Gives ICU its memory back. For use inside `rest`.
void allowConverters();

}  // namespace OvMemTest

#endif
