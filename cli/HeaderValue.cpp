#include "cli/HeaderValue.h"

#include "cli/Failure.h"
#include "cli/Utf8.h"

namespace ovmem::cli {

void checkHeaderValue(const std::string& option, const std::string& value) {
    if (value.find_first_of("\r\n") != std::string::npos) {
        throw Failure{ExitCode::Usage,
                      option +
                          " holds a line end, which would break the "
                          "header lines of the request.",
                      "Give " + option + " a value of one line."};
    }
    if (value == "null") {
        throw Failure{ExitCode::Usage,
                      option +
                          " is \"null\", which would be sent as an empty "
                          "value.",
                      "Give " + option + " another value."};
    }
    if (!isUtf8(value)) {
        throw Failure{ExitCode::Usage, option + " is not UTF-8.",
                      "Give " + option +
                          " a value in UTF-8, which is what is sent, "
                          "whatever the locale."};
    }
}

}  // namespace ovmem::cli
