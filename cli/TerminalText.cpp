#include "cli/TerminalText.h"

#include <algorithm>
#include <iterator>

#include "cli/Utf8.h"

namespace ovmem::cli {

namespace {

const char INDENTATION[] = "       ";  // as wide as "ovmem: "

struct Range {
    char32_t first, last;
};

const Range STEERING[] = {
    {0x0000, 0x001F},   {0x007F, 0x009F},   {0x00AD, 0x00AD},
    {0x034F, 0x034F},   {0x061C, 0x061C},   {0x115F, 0x1160},
    {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x200B, 0x200F},
    {0x2028, 0x202E},   {0x2060, 0x206F},   {0x3164, 0x3164},
    {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},
    {0xFFF0, 0xFFFB},   {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
    {0xE0000, 0xE0FFF},
};

std::string escapedBytes(std::string_view bytes) {
    const char digits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += {'\\', 'x', digits[value >> 4], digits[value & 0xF]};
    }
    return text;
}

}  // namespace

bool steersTerminal(char32_t code) {
    return std::any_of(std::begin(STEERING), std::end(STEERING),
                       [code](const Range& range) {
                           return range.first <= code && code <= range.last;
                       });
}

std::string escaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const bool broken = character.length == 0;
        const auto bytes = text.substr(0, broken ? 1 : character.length);
        if (broken || steersTerminal(character.code)) {
            result += escapedBytes(bytes);
        } else {
            result += bytes == "\\" ? "\\\\" : bytes;
        }
        text.remove_prefix(bytes.size());
    }
    return result;
}

std::string escapedLines(std::string_view message) {
    std::string lines;
    for (std::size_t end = message.find('\n'); end != std::string_view::npos;
         end = message.find('\n')) {
        lines += escaped(message.substr(0, end)) + '\n' + INDENTATION;
        message.remove_prefix(end + 1);
    }
    return lines + escaped(message);
}

}  // namespace ovmem::cli
