#ifndef BENCH_CHECKSUM_H
#define BENCH_CHECKSUM_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane::Net::OvModelEventManager::Bench {

// Of what a benchmark produced: two that did the same work have the same one.

inline constexpr std::uint32_t emptyChecksum = 2166136261;

std::uint32_t checksum(std::string_view bytes,
                       std::uint32_t before = emptyChecksum);

// Tells {"ab"} from {"a", "b"}.
std::uint32_t checksum(const std::vector<std::string>& texts);

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
