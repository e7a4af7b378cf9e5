#include "cli/Base64.h"

#include <cstddef>
#include <cstdint>

namespace ovmem::cli {

namespace {

const char ALPHABET[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// One to three bytes as four characters.
void appendGroup(std::string_view group, std::string& text) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const char byte = i < group.size() ? group[i] : '\0';
        bits = bits << 8 | static_cast<unsigned char>(byte);
    }
    for (std::size_t i = 0; i < 4; ++i) {
        const std::uint32_t index = bits >> (18 - 6 * i) & 0x3F;
        text += i <= group.size() ? ALPHABET[index] : '=';
    }
}

}  // namespace

std::string toBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t begin = 0; begin < bytes.size(); begin += 3) {
        appendGroup(bytes.substr(begin, 3), text);
    }
    return text;
}

}  // namespace ovmem::cli
