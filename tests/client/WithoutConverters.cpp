#include "tests/client/WithoutConverters.h"

#include <cstdlib>

#include <unicode/uclean.h>

#include "tests/support/RunInChild.h"

namespace OvMemTest {

namespace {

bool heapIsDry = false;

extern "C" {

static void* U_CALLCONV allocateForIcu(const void*, size_t size) {
    return heapIsDry ? nullptr : std::malloc(size);
}

static void* U_CALLCONV reallocateForIcu(const void*, void* block,
                                         size_t size) {
    return heapIsDry ? nullptr : std::realloc(block, size);
}

static void U_CALLCONV releaseForIcu(const void*, void* block) {
    std::free(block);
}
}

}  // namespace

void withoutConverters(const std::function<void()>& rest) {
    runInChild([&rest] {
        UErrorCode error = U_ZERO_ERROR;
        u_setMemoryFunctions(nullptr, allocateForIcu, reallocateForIcu,
                             releaseForIcu, &error);
        ASSERT_TRUE(U_SUCCESS(error)) << u_errorName(error);
        heapIsDry = true;
        rest();
        heapIsDry = false;
    });
}

void allowConverters() {
    heapIsDry = false;
}

}  // namespace OvMemTest
