#ifndef CLI_UTF8_H
#define CLI_UTF8_H

#include <cstddef>
#include <string_view>

namespace ovmem::cli {

// True if `bytes` are well-formed UTF-8: no overlong form, no surrogate,
// nothing above U+10FFFF, no character cut short. The empty text is.
bool isUtf8(std::string_view bytes);

// The character at the front of a text.
struct Character {
    std::size_t length;  // in bytes; 0 if they are not well-formed UTF-8
    char32_t code;       // 0 then
};

// REQUIRES: `bytes` is not empty.
Character firstCharacter(std::string_view bytes);

}  // namespace ovmem::cli

#endif
