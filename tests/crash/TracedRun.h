#ifndef TESTS_CRASH_TRACEDRUN_H
#define TESTS_CRASH_TRACEDRUN_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace OvMemTest {

// What a program is run for, and how far.
struct TracedPlan {
    std::string program;
    std::string storeUrl;  // its OVMEM_STORE
    std::string folder;    // calls on what is in it count
    std::string output;    // the file that takes its standard output

    // Kills it at a call, counted from 1: with 2n - 1 before the n-th is
    // carried out, with 2n after it. 0 lets it end by itself.
    std::uint64_t killAt = 0;

    // Called once, when the program is about to begin.
    std::function<void()> atStart = [] {};
};

struct TracedEnd {
    std::uint64_t calls = 0;  // so many of those that count were begun
    int status = 0;           // as waitpid tells
};

// Runs a program with one thread under the eyes of this process, as a debugger
// does, from one system call to the next.
TracedEnd runTraced(const TracedPlan& plan);

}  // namespace OvMemTest

#endif
