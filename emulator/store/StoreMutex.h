#ifndef EMULATOR_STORE_STOREMUTEX_H
#define EMULATOR_STORE_STOREMUTEX_H

#include <mutex>

namespace Orvane::Net::OvModelEventManager::Emulator {

// The one lock under which this process uses SQLite. A fork waits until it is
// free, so that a child never finds a connection in the middle of something,
// nor the lock closed by a thread that it does not have.
//
// Who holds another lock of that kind takes this one second, and registers it
// for forks after the first call of this function.
std::mutex& storeMutex();

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
