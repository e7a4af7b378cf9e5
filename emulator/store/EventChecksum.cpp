#include "emulator/store/EventChecksum.h"

#include <cstddef>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// Eight bytes at a time, so that a get is not slower for it. Each step can be
// undone, so that two texts of one length that differ in one word never get
// the same number.
class Checksum {
public:
    void add(std::uint64_t word) {
        state = (state ^ word) * 0x9E3779B97F4A7C15U;
        state ^= state >> 32U;
    }

    // With the length, so that nothing can move from one text to the next.
    void add(std::string_view text) {
        add(static_cast<std::uint64_t>(text.size()));
        while (!text.empty()) {
            std::uint64_t word = 0;
            const std::size_t length =
                text.copy(reinterpret_cast<char*>(&word), sizeof(word));
            add(word);
            text.remove_prefix(length);
        }
    }

    std::int64_t value() const { return static_cast<std::int64_t>(state); }

private:
    std::uint64_t state = 0;
};

}  // namespace

std::int64_t eventChecksum(std::int64_t server, std::int64_t number,
                           std::string_view sender, std::string_view body) {
    Checksum checksum;
    checksum.add(static_cast<std::uint64_t>(server));
    checksum.add(static_cast<std::uint64_t>(number));
    checksum.add(sender);
    checksum.add(body);
    return checksum.value();
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
