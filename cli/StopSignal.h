#ifndef CLI_STOPSIGNAL_H
#define CLI_STOPSIGNAL_H

#include <string>

#include "cli/ExitCode.h"

// The signals by which a program is told to stop: TERM, INT, HUP and QUIT.

namespace ovmem::cli {

inline constexpr int STOP_SIGNALS = 4;

// The `index`th of them, from 0.
int stopSignal(int index);

// "SIGTERM"
std::string nameOfSignal(int signal);

// 128 + `signal`, as a shell reports a program that a signal ended.
ExitCode exitCodeOfSignal(int signal);

// Whether a run with this exit code was told to stop.
bool isStopped(ExitCode exitCode);

}  // namespace ovmem::cli

#endif
