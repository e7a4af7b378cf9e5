#include "cli/StopSignal.h"

#include <csignal>

#include <string.h>

namespace ovmem::cli {

namespace {

const int STOPPED = 128;

const int SIGNALS[STOP_SIGNALS] = {SIGTERM, SIGINT, SIGHUP, SIGQUIT};

}  // namespace

int stopSignal(int index) {
    return SIGNALS[index];
}

std::string nameOfSignal(int signal) {
    return std::string("SIG") + sigabbrev_np(signal);
}

ExitCode exitCodeOfSignal(int signal) {
    return static_cast<ExitCode>(STOPPED + signal);
}

bool isStopped(ExitCode exitCode) {
    return static_cast<int>(exitCode) > STOPPED;
}

}  // namespace ovmem::cli
