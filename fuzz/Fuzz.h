#ifndef FUZZ_FUZZ_H
#define FUZZ_FUZZ_H

#include <cstddef>
#include <cstdint>
#include <string>

// A fuzz target defines this function, and nothing else that is public. It is
// called with one input after another, by libFuzzer or by replay.cpp.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size);

namespace Fuzz {

inline std::string textOf(const std::uint8_t* data, std::size_t size) {
    return std::string(reinterpret_cast<const char*>(data), size);
}

// Ends the process with a message if something does not hold: a finding.
void require(bool holds, const char* what);

// Takes the front of `text` up to the first `separator`, which goes too.
std::string takeUntil(std::string& text, char separator);

}  // namespace Fuzz

#endif
