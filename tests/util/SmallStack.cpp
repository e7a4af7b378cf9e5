#include "tests/util/SmallStack.h"

#include <system_error>

#include <pthread.h>

namespace OvMemTest {

namespace {

constexpr std::size_t stackSize = 64 * 1024;

void* run(void* code) {
    (*static_cast<const std::function<void()>*>(code))();
    return nullptr;
}

void check(int error) {
    if (error != 0)
        throw std::system_error(error, std::generic_category());
}

}  // namespace

void onSmallStack(const std::function<void()>& code) {
    pthread_attr_t attributes;
    pthread_t thread;
    check(pthread_attr_init(&attributes));
    check(pthread_attr_setstacksize(&attributes, stackSize));
    check(pthread_create(&thread, &attributes, run,
                         const_cast<std::function<void()>*>(&code)));
    check(pthread_join(thread, nullptr));
    check(pthread_attr_destroy(&attributes));
}

}  // namespace OvMemTest
