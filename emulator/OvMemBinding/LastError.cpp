#include "emulator/OvMemBinding/LastError.h"

#include <exception>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr const char* outOfMemoryText =
    "The emulator ran out of memory. Free memory or send smaller requests, "
    "then repeat the call.";

}  // namespace

void LastError::clear() noexcept {
    failed = false;
    outOfMemory = false;
    kept.clear();
    handedOut.clear();
}

void LastError::set(const char* text) noexcept {
    clear();
    failed = true;
    try {
        kept = text ? text : outOfMemoryText;
    } catch (const std::exception&) {
        outOfMemory = true;
    }
}

const char* LastError::handOut(const HostHeap* heap) {
    if (!failed) {
        return nullptr;
    }
    const char* text = outOfMemory ? outOfMemoryText : kept.c_str();
    if (!heap) {
        return text;
    }
    HostBytes copy(*heap);
    copy.append(text);
    handedOut = std::move(copy);
    return handedOut.view().data();
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
