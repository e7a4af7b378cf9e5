#ifndef CLI_BASE64_H
#define CLI_BASE64_H

#include <string>
#include <string_view>

namespace ovmem::cli {

// `bytes` in base64 with the alphabet A-Z a-z 0-9 + / and '=' for padding, on
// one line.
std::string toBase64(std::string_view bytes);

}  // namespace ovmem::cli

#endif
