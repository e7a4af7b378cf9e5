#include "OvMemCppBinding/util/GuardedParse.h"

#include <xercesc/util/PlatformUtils.hpp>

#include "OvMemCppBinding/util/LimitedMemory.h"

namespace Orvane::Net::OvModelEventManager::Util {

using xercesc::XMLPlatformUtils;

std::unique_ptr<GuardedParse> GuardedParse::begin(TreeBudget& budget) {
    if (XMLPlatformUtils::fgMemoryManager != &LimitedMemory::instance())
        return nullptr;
    return std::unique_ptr<GuardedParse>(new GuardedParse(budget));
}

GuardedParse::GuardedParse(TreeBudget& budget)
    : parseMemory(LimitedMemory::instance(), time), parseWatch(budget, time) {}

xercesc::MemoryManager& GuardedParse::memoryOf(
    const std::unique_ptr<GuardedParse>& guarded) {
    if (guarded)
        return guarded->parseMemory;
    return *XMLPlatformUtils::fgMemoryManager;
}

void GuardedParse::watch(xercesc::SAX2XMLReader& reader) {
    if (!ParseTime::isLimited())
        return;
    reader.installAdvDocHandler(&parseWatch);
    reader.setLexicalHandler(&doctypeRefusal);
}

}  // namespace Orvane::Net::OvModelEventManager::Util
