#ifndef EMULATOR_STORE_SYSTEMADVICE_H
#define EMULATOR_STORE_SYSTEMADVICE_H

namespace Orvane::Net::OvModelEventManager::Emulator {

inline constexpr const char* freeSpace =
    "Free space on its disk, then repeat the call.";

// What to do when a system call on a file of a store failed with this errno: a
// sentence. `otherwise` is for an errno that tells nothing more.
const char* adviceFor(int systemError, const char* otherwise) noexcept;

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
