#ifndef CLI_FAILURE_H
#define CLI_FAILURE_H

#include <string>

#include "cli/ExitCode.h"

namespace ovmem::cli {

// A failure that ovmem itself finds: an argument or a text it refuses, a local
// file or stream it cannot read or write, events that nobody would receive, a
// signal that stops it. Failures of the library keep their own classes.
struct Failure {
    ExitCode exitCode;   // Usage, InputOutput, NoReceiver, or of a signal
    std::string text;    // what happened
    std::string advice;  // what to do; may be empty
};

}  // namespace ovmem::cli

#endif
