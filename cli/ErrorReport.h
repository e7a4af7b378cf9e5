#ifndef CLI_ERRORREPORT_H
#define CLI_ERRORREPORT_H

#include <optional>
#include <string>

#include "cli/ExitCode.h"
#include "cli/Failure.h"

namespace ovmem::cli {

// The type code of a failed status check.
inline constexpr int STATUS_FAILED = -1;

// A caught exception in words: everything that ovmem tells about a failure.
struct ErrorReport {
    ExitCode exitCode;
    std::string className;    // "OvMEMProtocolException"
    std::optional<int> type;  // the type code, where the class has one
    std::string text;         // the exception's own, byte for byte
    std::string statement;    // class, code and text, as the library puts it
    std::string advice;       // what to do about it; may be empty
    std::string cause;        // of a failed status check, as the transport
                              // tells it; may be empty
};

// Reports the exception being handled, whatever it is.
//
// REQUIRES: is called in a catch block, once: an exception that was thrown as
// a pointer is deleted here.
ErrorReport reportCurrentException();

// Reports a failure that need not have been thrown.
ErrorReport reportFailure(const Failure& failure);

}  // namespace ovmem::cli

#endif
