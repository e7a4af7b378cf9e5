#ifndef CLI_UTF8_H
#define CLI_UTF8_H

#include <string_view>

namespace ovmem::cli {

// True if `bytes` are well-formed UTF-8: no overlong form, no surrogate,
// nothing above U+10FFFF, no character cut short. The empty text is.
bool isUtf8(std::string_view bytes);

}  // namespace ovmem::cli

#endif
