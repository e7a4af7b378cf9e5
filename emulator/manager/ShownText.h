#ifndef EMULATOR_MANAGER_SHOWNTEXT_H
#define EMULATOR_MANAGER_SHOWNTEXT_H

#include <string>
#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// A text of the application as an error text shows it: in single quotes,
// control characters as '?', at most 80 bytes and then "...".
std::string shown(std::string_view text);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
