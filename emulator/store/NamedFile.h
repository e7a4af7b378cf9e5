#ifndef EMULATOR_STORE_NAMEDFILE_H
#define EMULATOR_STORE_NAMEDFILE_H

#include <string>

namespace Orvane::Net::OvModelEventManager::Emulator {

// Whether `path` still names the file that is open as `file`: it may have been
// removed, or another one put in its place. False if that cannot be found out.
bool bearsName(int file, const std::string& path) noexcept;

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
