#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/Wire.h"

using namespace OvMemTest;

// What the emulator did not foresee, here exceptions of the host's heap, never
// leaves through the C functions.

namespace {

std::function<void()> heapFailure;

void* allocate(std::size_t size) {
    if (heapFailure) {
        heapFailure();
    }
    return std::malloc(size);
}

class OvMemBindingFailures : public testing::Test {
protected:
    OvMemBindingFailures() {
        environment.set("OVMEM_STORE", "memory:");
        EXPECT_EQ(OvMem_Init(&allocate, &std::free), 0);
    }
    ~OvMemBindingFailures() override {
        heapFailure = nullptr;
        EXPECT_EQ(OvMem_Term(), 0);
    }

    // A status check under which the heap fails once, and one after it.
    static void expectFailure(const std::function<void()>& thrown,
                              const std::string& text) {
        heapFailure = thrown;
        EXPECT_EQ(OvMem_SendNoAck("Half a header"), -3010);
        heapFailure = nullptr;
        EXPECT_EQ(lastError(), text);
        EXPECT_EQ(request("getStatus", "", "", "echo").reply, "echo");
    }

private:
    Environment environment;
};

}  // namespace

TEST_F(OvMemBindingFailures, AnUnforeseenExceptionBecomesAStatusAndItsText) {
    expectFailure([] { throw std::runtime_error("the heap is closed"); },
                  "the heap is closed");
}

TEST_F(OvMemBindingFailures, SoDoesAnythingElseThatIsThrown) {
    expectFailure([] { throw 42; },
                  "The emulator failed for a reason that it does not know. "
                  "Repeat the call, and report it if it fails again.");
}

TEST_F(OvMemBindingFailures, ATextThatTheHeapHasNoRoomForIsAFailure) {
    EXPECT_EQ(OvMem_SendEOF(), -3016);
    heapFailure = [] { throw std::runtime_error("the heap is closed"); };
    const char* text = "old";
    EXPECT_EQ(OvMem_GetLastError(&text), -3010);
    EXPECT_EQ(text, nullptr);
}
