#include "emulator/OvMemBinding/Transport.h"

#include <chrono>
#include <cstddef>
#include <optional>

#include <gtest/gtest.h>

#include "tests/emulator/CountedHeap.h"
#include "tests/emulator/Environment.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::CountedHeap;

namespace {

// A transport whose last end does not wait long for a call in progress.
class TransportTest : public testing::Test {
protected:
    TransportTest() {
        environment.set("OVMEM_STORE", "memory:");
        transport.start(&CountedHeap::allocate, &CountedHeap::release);
    }

    OvMemTest::Environment environment;
    CountedHeap heap;
    Transport transport{1ms};
};

}  // namespace

TEST_F(TransportTest, ACallThatOutlastsTheLastEndKeepsWhatItUses) {
    std::optional<Transport::Use> call(std::in_place, transport);
    static void* body = call->session()->heap.take(8);  // never given back
    ASSERT_NE(body, nullptr);
    const std::size_t calls = heap.calls();
    transport.stop();
    EXPECT_EQ(heap.live(), 1U);
    EXPECT_NE(call->session()->store->registerClient({"plant", "pump"}),
              nullptr);
    EXPECT_EQ(call->session()->heap.take(8), nullptr);
    call->session()->heap.giveBack(body);
    call.reset();
    EXPECT_EQ(heap.calls(), calls);
}

TEST_F(TransportTest, TheLastEndGivesBackWhatNoCallUsesAnyMore) {
    {
        const Transport::Use call(transport);
        ASSERT_NE(call.session()->heap.take(8), nullptr);
    }
    EXPECT_EQ(heap.live(), 1U);
    transport.stop();
    EXPECT_EQ(heap.live(), 0U);
}
