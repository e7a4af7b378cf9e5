#ifndef EMULATOR_MANAGER_REFUSAL_H
#define EMULATOR_MANAGER_REFUSAL_H

#include <cstdint>
#include <stdexcept>
#include <string>

namespace Orvane::Net::OvModelEventManager::Emulator {

// The statuses with which the emulator answers what it does not do.
// docs/emulator.md lists their causes.
namespace Status {

inline constexpr std::int32_t malformed = -751;  // or over a limit
inline constexpr std::int32_t unavailable = -3001;
inline constexpr std::int32_t failure = -3010;
inline constexpr std::int32_t outOfOrder = -3016;
inline constexpr std::int32_t notRegistered = -3017;

// Of OvMem_Init.
inline constexpr std::int32_t initUnavailable = 1001;
inline constexpr std::int32_t initMalformed = 1002;
inline constexpr std::int32_t initFailure = 1003;

}  // namespace Status

// A request or a call that is refused. The text is whole sentences for the
// person at the application: what was wrong and what to do about it.
class Refusal : public std::runtime_error {
public:
    Refusal(std::int32_t refusalStatus, const std::string& text)
        : std::runtime_error(text), status(refusalStatus) {}

    const std::int32_t status;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
