#ifndef CLI_OPTIONS_H
#define CLI_OPTIONS_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "cli/Grace.h"

namespace ovmem::cli {

enum class Command {
    Status,
    Register,
    Clients,
    Put,
    Get,
    Unregister,
    RescueList,
    RescueShow,
    RescuePutBack
};

// The correlation of a put that was given none.
inline constexpr const char* PUT_WITHOUT_ID = "ovmem.put";

// What the command line and the environment ask for.
struct Options {
    // What --help or --version has to say. If present, nothing else counts.
    std::optional<std::string> answer;

    Command command = Command::Status;
    std::optional<std::string> server;  // nothing: on no registration
    std::string client;
    std::string locale;              // empty: none is sent
    std::vector<std::string> files;  // of put; names, of rescue
    std::optional<std::string> id;   // of put
    std::chrono::milliseconds grace = DEFAULT_GRACE;
    bool json = false;
    bool quiet = false;
};

// Understands the arguments of main. Options win over the environment, in
// which an empty value counts as absent.
//
// THROWS: Failure with ExitCode::Usage.
Options parseOptions(int count, const char* const* arguments);

}  // namespace ovmem::cli

#endif
