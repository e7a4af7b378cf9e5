#ifndef EMULATOR_STORE_CHECKSUM_H
#define EMULATOR_STORE_CHECKSUM_H

#include <cstdint>
#include <string_view>

namespace Orvane::Net::OvModelEventManager::Emulator {

// A number over values and texts in their order, by which they are known again.
// It finds what a disk or another program has altered by accident; it is no
// protection against somebody who means it. The same on every machine of the
// same byte order.
class Checksum {
public:
    // Checksums of different kinds differ for the same values.
    explicit Checksum(std::int64_t kind) { add(kind + 1); }

    Checksum& add(std::int64_t value);

    // The length counts, too.
    Checksum& add(std::string_view text);

    std::int64_t value() const { return static_cast<std::int64_t>(state); }

private:
    std::uint64_t state = 0;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
