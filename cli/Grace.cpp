#include "cli/Grace.h"

#include <charconv>

#include "cli/Failure.h"

namespace ovmem::cli {

namespace {

const double MOST_SECONDS = 3600;

}  // namespace

std::chrono::milliseconds parseGrace(const std::string& text) {
    double seconds = 0;
    const char* const end = text.data() + text.size();
    // Unlike strtod, the same in every locale.
    const auto read =
        std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
    // A NaN fails the comparisons.
    const bool inRange = seconds >= 0 && seconds <= MOST_SECONDS;
    if (read.ec != std::errc() || read.ptr != end || !inRange) {
        throw Failure{ExitCode::Usage,
                      "--grace is '" + text +
                          "', which is not a number of seconds from 0 to 3600.",
                      "Give --grace a decimal number, for instance 2.5."};
    }
    return std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
}

}  // namespace ovmem::cli
