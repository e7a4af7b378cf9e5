#include "emulator/manager/ShownText.h"

#include <cstddef>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr std::size_t shownBytes = 80;

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool isControl(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code < 0x20 || code == 0x7F;
}

}  // namespace

std::string shown(std::string_view text) {
    std::size_t length = text.size();
    if (length > shownBytes) {
        length = shownBytes;
        while (length > 0 && isContinuation(text[length])) {
            --length;
        }
    }
    std::string result = "'";
    for (const char byte : text.substr(0, length)) {
        result += isControl(byte) ? '?' : byte;
    }
    return result + (length < text.size() ? "...'" : "'");
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
