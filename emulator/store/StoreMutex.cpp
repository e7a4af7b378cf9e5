#include "emulator/store/StoreMutex.h"

#include <pthread.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

std::mutex* makeMutex() {
    ::pthread_atfork([] { storeMutex().lock(); }, [] { storeMutex().unlock(); },
                     [] { storeMutex().unlock(); });
    return new std::mutex;
}

}  // namespace

// Never destroyed: a fork may come at the very end of the process.
std::mutex& storeMutex() {
    static std::mutex* const mutex = makeMutex();
    return *mutex;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
