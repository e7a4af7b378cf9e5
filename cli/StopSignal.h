#ifndef CLI_STOPSIGNAL_H
#define CLI_STOPSIGNAL_H

#include <string>
#include <vector>

#include "cli/ExitCode.h"

// The signals by which a program is told to stop: all that end one unless it
// says otherwise, from TERM and INT to the timers and the real-time signals.
// Not among them are KILL, which nobody can catch, and those by which a program
// fails on its own account (SEGV, ABRT and the like).

namespace ovmem::cli {

std::vector<int> stopSignals();

// "SIGTERM", "SIGRTMIN+3"
std::string nameOfSignal(int signal);

// 128 + `signal`, as a shell reports a program that a signal ended.
ExitCode exitCodeOfSignal(int signal);

// Whether a run with this exit code was told to stop.
bool isStopped(ExitCode exitCode);

}  // namespace ovmem::cli

#endif
