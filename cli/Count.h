#ifndef CLI_COUNT_H
#define CLI_COUNT_H

#include <cstddef>
#include <string>

namespace ovmem::cli {

// "0 bytes", "1 byte", "2 bytes"
inline std::string count(std::size_t number, const char* singular) {
    return std::to_string(number) + ' ' + singular + (number == 1 ? "" : "s");
}

}  // namespace ovmem::cli

#endif
