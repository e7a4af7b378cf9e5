#include "cli/Utf8.h"

namespace ovmem::cli {

namespace {

// What may follow a first byte: the number of bytes, and the range of the
// next one. The others lie between 0x80 and 0xBF.
struct Sequence {
    unsigned char firstLow, firstHigh;
    std::size_t following;
    unsigned char nextLow, nextHigh;
};

const Sequence SEQUENCES[] = {
    {0x00, 0x7F, 0, 0x00, 0x00}, {0xC2, 0xDF, 1, 0x80, 0xBF},
    {0xE0, 0xE0, 2, 0xA0, 0xBF}, {0xE1, 0xEC, 2, 0x80, 0xBF},
    {0xED, 0xED, 2, 0x80, 0x9F}, {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF}, {0xF1, 0xF3, 3, 0x80, 0xBF},
    {0xF4, 0xF4, 3, 0x80, 0x8F},
};

bool isBetween(char byte, unsigned char low, unsigned char high) {
    const auto value = static_cast<unsigned char>(byte);
    return low <= value && value <= high;
}

// The length of the character at the front of `bytes`; 0 if it is none.
std::size_t lengthOfCharacter(std::string_view bytes) {
    for (const Sequence& sequence : SEQUENCES) {
        if (!isBetween(bytes[0], sequence.firstLow, sequence.firstHigh)) {
            continue;
        }
        if (bytes.size() <= sequence.following) {
            return 0;
        }
        for (std::size_t i = 1; i <= sequence.following; ++i) {
            const bool next = i == 1;
            if (!isBetween(bytes[i], next ? sequence.nextLow : 0x80,
                           next ? sequence.nextHigh : 0xBF)) {
                return 0;
            }
        }
        return sequence.following + 1;
    }
    return 0;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        if (isBetween(bytes[0], 0x00, 0x7F)) {  // for speed
            bytes.remove_prefix(1);
            continue;
        }
        const std::size_t length = lengthOfCharacter(bytes);
        if (length == 0) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
}

Character firstCharacter(std::string_view bytes) {
    const std::size_t length = lengthOfCharacter(bytes);
    if (length == 0) {
        return {0, 0};
    }
    // The first byte holds the high bits, below as many ones as it has bytes.
    const auto first = static_cast<unsigned char>(bytes[0]);
    char32_t code = length == 1 ? first : first & (0x7Fu >> length);
    for (const char byte : bytes.substr(1, length - 1)) {
        code = code << 6 | (static_cast<unsigned char>(byte) & 0x3Fu);
    }
    return {length, code};
}

}  // namespace ovmem::cli
