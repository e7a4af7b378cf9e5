#include "emulator/manager/XmlText.h"

#include <cstddef>
#include <cstdint>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

struct Sequence {  // of the bytes of one code point
    std::size_t length;
    std::uint32_t bits;   // of the first byte
    std::uint32_t least;  // shorter sequences exist for what is below
};

Sequence sequenceOf(unsigned char first) {
    if (first < 0x80) {
        return {1, first, 0};
    }
    if (first >= 0xC0 && first < 0xE0) {
        return {2, first & 0x1FU, 0x80};
    }
    if (first >= 0xE0 && first < 0xF0) {
        return {3, first & 0x0FU, 0x800};
    }
    if (first >= 0xF0 && first < 0xF8) {
        return {4, first & 0x07U, 0x10000};
    }
    return {0, 0, 0};
}

bool isXmlCharacter(std::uint32_t code) {
    if (code < 0x20) {
        return code == '\t' || code == '\n';
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    const bool nonCharacter = code == 0xFFFE || code == 0xFFFF;
    return !surrogate && !nonCharacter && code <= 0x10FFFF;
}

}  // namespace

bool isXmlText(std::string_view text) {
    while (!text.empty()) {
        const auto sequence = sequenceOf(static_cast<unsigned char>(text[0]));
        if (sequence.length == 0 || sequence.length > text.size()) {
            return false;
        }
        std::uint32_t code = sequence.bits;
        for (std::size_t i = 1; i < sequence.length; ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            if ((byte & 0xC0U) != 0x80U) {
                return false;
            }
            code = code << 6U | (byte & 0x3FU);
        }
        if (code < sequence.least || !isXmlCharacter(code)) {
            return false;
        }
        text.remove_prefix(sequence.length);
    }
    return true;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
