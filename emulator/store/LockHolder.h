#ifndef EMULATOR_STORE_LOCKHOLDER_H
#define EMULATOR_STORE_LOCKHOLDER_H

#include <string>
#include <vector>

namespace Orvane::Net::OvModelEventManager::Emulator {

// Who keeps others from locking one of `files`, for an error text: "process 42
// (vim)", "process 42 (vim), which is stopped,", "another part of this
// process", or "a process that cannot be seen from here". Asks the kernel's
// list of locks; one that others may share does not count.
std::string describeLockHolder(const std::vector<std::string>& files);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
