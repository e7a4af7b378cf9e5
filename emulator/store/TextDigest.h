#ifndef EMULATOR_STORE_TEXTDIGEST_H
#define EMULATOR_STORE_TEXTDIGEST_H

#include <array>
#include <cstdint>
#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// What stands for a text that is no longer kept: 128 bits, SipHash-2-4 with a
// fixed key.
//
// Two texts of the same digest do not meet by chance: among 2^40 texts the odds
// are below 1 to 2^48. Whoever knows the key could make such texts on purpose.
struct TextDigest {
    explicit TextDigest(std::string_view text);

    // As a store keeps it; valid as long as this object.
    std::string_view bytes() const;

    bool operator==(const TextDigest&) const = default;

    std::array<std::uint64_t, 2> words{};
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
