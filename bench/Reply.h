#ifndef BENCH_REPLY_H
#define BENCH_REPLY_H

#include <cstddef>
#include <string>
#include <vector>

namespace Orvane::Net::OvModelEventManager::Bench {

inline constexpr const char* schemaNamespace =
    "http://www.orvane.com/Schemas/OvModelEventManager/_2009_06/base";

// `count` identifiers of 21 characters each: longer than a std::string can keep
// without asking for memory.
std::vector<std::string> identifiers(std::size_t count);

// The reply of a service that lists them.
std::string reply(std::size_t count);

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
