#ifndef EMULATOR_OVMEMBINDING_SPENTPAGES_H
#define EMULATOR_OVMEMBINDING_SPENTPAGES_H

#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// Gives the memory of a text that nobody reads any more back to the system: all
// whole pages of it. Their addresses stay the owner's, who frees them as usual;
// their bytes have no value from now on.
//
// For the front of a large text whose rest is still needed. Does nothing where
// the system refuses, as it does for locked memory.
void giveBackPages(std::string_view spent) noexcept;

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
