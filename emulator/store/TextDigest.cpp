#include "emulator/store/TextDigest.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// The bytes 0 to 15.
constexpr std::uint64_t firstKey = 0x0706050403020100U;
constexpr std::uint64_t secondKey = 0x0F0E0D0C0B0A0908U;

class SipState {
public:
    void take(std::uint64_t word) {
        v3 ^= word;
        mix(2);
        v0 ^= word;
    }

    std::uint64_t firstHalf() {
        v2 ^= 0xEEU;
        mix(4);
        return v0 ^ v1 ^ v2 ^ v3;
    }

    std::uint64_t secondHalf() {
        v1 ^= 0xDDU;
        mix(4);
        return v0 ^ v1 ^ v2 ^ v3;
    }

private:
    void mix(int rounds) {
        for (; rounds > 0; --rounds) {
            v0 += v1;
            v2 += v3;
            v1 = std::rotl(v1, 13) ^ v0;
            v3 = std::rotl(v3, 16) ^ v2;
            v0 = std::rotl(v0, 32);
            v2 += v1;
            v0 += v3;
            v1 = std::rotl(v1, 17) ^ v2;
            v3 = std::rotl(v3, 21) ^ v0;
            v2 = std::rotl(v2, 32);
        }
    }

    std::uint64_t v0 = firstKey ^ 0x736F6D6570736575U;
    std::uint64_t v1 = secondKey ^ 0x646F72616E646F6DU ^ 0xEEU;
    std::uint64_t v2 = firstKey ^ 0x6C7967656E657261U;
    std::uint64_t v3 = secondKey ^ 0x7465646279746573U;
};

std::uint64_t wordOf(std::string_view bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data(), bytes.size());
    return word;
}

}  // namespace

TextDigest::TextDigest(std::string_view text) {
    constexpr std::size_t width = sizeof(std::uint64_t);
    const std::uint64_t length = text.size();
    SipState state;
    for (; text.size() >= width; text.remove_prefix(width)) {
        state.take(wordOf(text.substr(0, width)));
    }
    state.take(length << 56U | (text.empty() ? 0 : wordOf(text)));
    words[0] = state.firstHalf();
    words[1] = state.secondHalf();
}

std::string_view TextDigest::bytes() const {
    return {reinterpret_cast<const char*>(words.data()), sizeof(words)};
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
