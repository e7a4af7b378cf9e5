#include "cli/HeaderValue.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <langinfo.h>

#include "cli/Failure.h"

namespace ovmem::cli {

namespace {

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x80;
    });
}

// The C library lets bytes above 127 pass in its plain locale; the conversion
// to UTF-8 does not, hence the look at the name.
bool isTextOfLocale(const std::string& text) {
    const bool plain = std::strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0;
    const auto invalid = static_cast<std::size_t>(-1);
    return isAscii(text) ||
           (!plain && std::mbstowcs(nullptr, text.c_str(), 0) != invalid);
}

}  // namespace

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
    if (!isTextOfLocale(value)) {
        throw Failure{ExitCode::Usage,
                      option + " is not text in the code page of the locale (" +
                          nl_langinfo(CODESET) + ").",
                      "Set a locale that has its characters, for instance "
                      "LC_ALL=C.UTF-8."};
    }
}

}  // namespace ovmem::cli
