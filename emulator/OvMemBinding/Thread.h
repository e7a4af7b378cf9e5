#ifndef EMULATOR_OVMEMBINDING_THREAD_H
#define EMULATOR_OVMEMBINDING_THREAD_H

#include <memory>

#include "emulator/OvMemBinding/Exchange.h"
#include "emulator/OvMemBinding/LastError.h"
#include "emulator/OvMemBinding/Transport.h"
#include "emulator/manager/SharedClientsReplies.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// What one thread has under way.
//
// It lives from the thread's first call to the thread's end, and a call that
// comes later still, from a destructor of another thread_local object, finds a
// new one. At the end of the process the one of the main thread stays, since
// the destructors of the program's own objects may make calls.
struct Thread {
    // Null if there is no memory for a new one.
    static Thread* current() noexcept;

    // Frees that of the calling thread.
    static void forgetCurrent() noexcept;

    std::weak_ptr<Session> session;  // to which the exchange belongs
    Exchange exchange;
    SharedClientsReplies replies;
    LastError lastError;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
