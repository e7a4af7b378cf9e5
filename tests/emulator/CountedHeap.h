#ifndef TESTS_EMULATOR_COUNTEDHEAP_H
#define TESTS_EMULATOR_COUNTEDHEAP_H

#include <cstddef>

namespace OvMemTest {

// Heap functions, as the application hands them to the transport, that know
// which of their blocks are out. A block given back twice, or one that is not
// theirs, fails the test. One at a time.
class CountedHeap {
public:
    CountedHeap();
    CountedHeap(const CountedHeap&) = delete;
    CountedHeap& operator=(const CountedHeap&) = delete;
    ~CountedHeap();

    static void* allocate(std::size_t size);
    static void release(void* block);

    // Lets every later allocation answer null.
    void failFromNowOn();

    std::size_t live() const;         // blocks that are out
    std::size_t allocations() const;  // since construction
    std::size_t calls() const;        // of both functions since then
};

}  // namespace OvMemTest

#endif
