#include "emulator/OvMemBinding/Thread.h"

#include <new>

#include <pthread.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// No destructor of its own: the key's destructor frees it when the thread ends,
// after those of all thread_local objects.
thread_local Thread* currentThread = nullptr;

pthread_key_t key;
bool hasKey = false;

[[gnu::constructor]] void makeKey() {
    hasKey =
        ::pthread_key_create(&key, [](void*) { Thread::forgetCurrent(); }) == 0;
}

// The library may be unloaded: no thread may end in its code afterwards.
[[gnu::destructor]] void deleteKey() {
    if (hasKey) {
        ::pthread_key_delete(key);
        hasKey = false;
    }
    Transport::instance().atEnd();
    Thread::forgetCurrent();
}

}  // namespace

Thread* Thread::current() noexcept {
    if (!currentThread) {
        currentThread = new (std::nothrow) Thread;
        if (hasKey) {
            ::pthread_setspecific(key, currentThread);
        }
    }
    return currentThread;
}

void Thread::forgetCurrent() noexcept {
    delete currentThread;
    currentThread = nullptr;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
