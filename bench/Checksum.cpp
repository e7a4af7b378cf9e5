#include "bench/Checksum.h"

namespace Orvane::Net::OvModelEventManager::Bench {

// FNV-1a.
std::uint32_t checksum(std::string_view bytes, std::uint32_t before) {
    for (const char byte : bytes) {
        before ^= static_cast<unsigned char>(byte);
        before *= 16777619;
    }
    return before;
}

std::uint32_t checksum(const std::vector<std::string>& texts) {
    std::uint32_t sum = emptyChecksum;
    for (const std::string& text : texts) {
        sum = checksum(text, sum);
        sum = checksum(std::string_view("\0", 1), sum);
    }
    return sum;
}

}  // namespace Orvane::Net::OvModelEventManager::Bench
