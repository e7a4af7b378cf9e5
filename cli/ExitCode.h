#ifndef CLI_EXITCODE_H
#define CLI_EXITCODE_H

#include <string>

// What ovmem's exit code says: one fixed number for each way a run can end.
// Scripts depend on the numbers; new ones are added at the end.

namespace ovmem::cli {

enum class ExitCode : int {
    Done = 0,
    Usage = 1,
    ConnectionException = 2,
    ProtocolException = 3,
    RuntimeException = 4,
    UnrecognisedException = 5,
    PlainException = 6,
    DomException = 7,
    AnyOtherException = 8,
    InputOutput = 9,
    OtherAnswer = 10,
    NoReceiver = 11
};

// All codes with their meanings, a line each, as --help shows them.
std::string listExitCodes();

}  // namespace ovmem::cli

#endif
