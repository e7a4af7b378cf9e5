#ifndef TESTS_FAULTS_FAILINGHEAP_H
#define TESTS_FAULTS_FAILINGHEAP_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace OvMemTest {

// The heap of this program, which refuses memory when it is told to and knows
// what has not been given back.
//
//     {
//         const FailingHeap::Scope scope({.failAt = 7});
//         ... the seventh request for memory fails ...
//     }
//
// In the scope every request counts, but for those of the scripted
// transport. What is underneath differs: MallocHook.cpp stands in the place of
// the C library's functions, for whoever calls them; OperatorNewHook.cpp, for
// the sanitizers, which need those for themselves, in that of operator new.
//
// Threads: one.
class FailingHeap {
public:
    struct Plan {
        std::uint64_t failAt = 0;  // counted from 1; 0 refuses nothing
        bool andAllAfter = false;
    };

    class Scope {
    public:
        explicit Scope(Plan plan);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
    };

    // In the latest scope.

    static std::uint64_t requests();
    static std::uint64_t refused();

    // The numbers of the requests, counted from 1, whose memory is still held.
    // Memory may be given back after its end.
    static std::vector<std::uint64_t> held();

    // From now on remembers who made these requests in a scope.
    static void watch(const std::vector<std::uint64_t>& requests);

    // Who made a request that was watched, from the innermost function to the
    // outermost, each as "library:function".
    static std::vector<std::string> stackOf(std::uint64_t request);

    // For the hooks alone.

    static bool refuses();
    static void taken(void* block);
    static void givenBack(void* block);
};

}  // namespace OvMemTest

#endif
