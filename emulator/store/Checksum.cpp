#include "emulator/store/Checksum.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// Each step can be undone, so that two rows of words that differ in one of them
// never end in the same state.
std::uint64_t mix(std::uint64_t state, std::uint64_t word) {
    state = (state ^ word) * 0x9E3779B97F4A7C15U;
    return state ^ state >> 32U;
}

std::uint64_t wordAt(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

}  // namespace

Checksum& Checksum::add(std::int64_t value) {
    state = mix(state, static_cast<std::uint64_t>(value));
    return *this;
}

// Four rows of words side by side, so that a get is hardly slower for it.
Checksum& Checksum::add(std::string_view text) {
    constexpr std::size_t width = 4 * sizeof(std::uint64_t);
    state = mix(state, text.size());
    std::array<std::uint64_t, 4> rows{state, state + 1, state + 2, state + 3};
    for (; text.size() >= width; text.remove_prefix(width)) {
        for (std::size_t row = 0; row < rows.size(); ++row) {
            rows[row] = mix(rows[row], wordAt(text.data() + row * 8));
        }
    }
    std::array<char, width> rest{};
    text.copy(rest.data(), rest.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        state = mix(mix(state, rows[row]), wordAt(rest.data() + row * 8));
    }
    return *this;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
