#ifndef EMULATOR_OVMEMBINDING_WITHOUTCANCELLATION_H
#define EMULATOR_OVMEMBINDING_WITHOUTCANCELLATION_H

#include <pthread.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

// During its life the calling thread is not cancelled: a store would be left in
// the middle of a write, and the unwinding would meet frames that let nothing
// out. The cancellation takes place at the thread's next chance.
class WithoutCancellation {
public:
    WithoutCancellation() noexcept {
        ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
    }
    WithoutCancellation(const WithoutCancellation&) = delete;
    WithoutCancellation& operator=(const WithoutCancellation&) = delete;
    ~WithoutCancellation() { ::pthread_setcancelstate(before, nullptr); }

private:
    int before = PTHREAD_CANCEL_ENABLE;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
