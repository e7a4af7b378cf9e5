#ifndef EMULATOR_MANAGER_XMLTEXT_H
#define EMULATOR_MANAGER_XMLTEXT_H

#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// True if an XML document carries `text` unchanged, once escaped: it is UTF-8
// and holds neither a control character other than tab and line feed nor a
// code point that XML has no place for.
bool isXmlText(std::string_view text);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
