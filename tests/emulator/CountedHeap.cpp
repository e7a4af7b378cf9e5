#include "tests/emulator/CountedHeap.h"

#include <cstdlib>
#include <mutex>
#include <set>

#include <gtest/gtest.h>

namespace OvMemTest {

namespace {

// The functions get no pointer of their own, so the state is static.
struct State {
    std::mutex mutex;
    std::set<void*> blocks;
    std::size_t allocations = 0;
    std::size_t calls = 0;
    bool failing = false;
};

State& state() {
    static State current;
    return current;
}

}  // namespace

CountedHeap::CountedHeap() {
    const std::lock_guard lock(state().mutex);
    state().blocks.clear();
    state().allocations = 0;
    state().calls = 0;
    state().failing = false;
}

CountedHeap::~CountedHeap() {
    const std::lock_guard lock(state().mutex);
    state().failing = false;
}

void* CountedHeap::allocate(std::size_t size) {
    const std::lock_guard lock(state().mutex);
    ++state().calls;
    void* block = state().failing ? nullptr : std::malloc(size);
    if (block) {
        state().blocks.insert(block);
        ++state().allocations;
    }
    return block;
}

void CountedHeap::release(void* block) {
    const std::lock_guard lock(state().mutex);
    ++state().calls;
    EXPECT_EQ(state().blocks.erase(block), 1U) << "not a block of this heap";
    std::free(block);
}

void CountedHeap::failFromNowOn() {
    const std::lock_guard lock(state().mutex);
    state().failing = true;
}

std::size_t CountedHeap::live() const {
    const std::lock_guard lock(state().mutex);
    return state().blocks.size();
}

std::size_t CountedHeap::allocations() const {
    const std::lock_guard lock(state().mutex);
    return state().allocations;
}

std::size_t CountedHeap::calls() const {
    const std::lock_guard lock(state().mutex);
    return state().calls;
}

}  // namespace OvMemTest
