#ifndef EMULATOR_MANAGER_LIMITREFUSAL_H
#define EMULATOR_MANAGER_LIMITREFUSAL_H

#include <string>

#include "emulator/manager/Refusal.h"
#include "emulator/store/QueueLimits.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// How a put that would pass a limit of the store is refused: the text names the
// limit, the store and the client that is behind, and says what to do.
Refusal limitRefusal(const QueueLimitPassed& passed,
                     const std::string& serverId);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
