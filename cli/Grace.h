#ifndef CLI_GRACE_H
#define CLI_GRACE_H

#include <chrono>
#include <string>

namespace ovmem::cli {

// How long get goes on after it was told to stop, unless --grace says
// otherwise.
inline constexpr std::chrono::milliseconds DEFAULT_GRACE{5000};

// The value of --grace: seconds from 0 to 3600 as a decimal number, "2.5". What
// is below a millisecond is dropped.
//
// THROWS: Failure with ExitCode::Usage.
std::chrono::milliseconds parseGrace(const std::string& text);

}  // namespace ovmem::cli

#endif
