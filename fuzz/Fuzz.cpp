#include "fuzz/Fuzz.h"

#include <cstdio>
#include <cstdlib>

namespace Fuzz {

void require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

std::string takeUntil(std::string& text, char separator) {
    const std::size_t end = text.find(separator);
    std::string front = text.substr(0, end);
    text.erase(0, end == std::string::npos ? end : end + 1);
    return front;
}

}  // namespace Fuzz
