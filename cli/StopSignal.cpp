#include "cli/StopSignal.h"

#include <csignal>
#include <iterator>

#include <string.h>

namespace ovmem::cli {

namespace {

const int STOPPED = 128;

const int SIGNALS[] = {SIGTERM, SIGINT,  SIGHUP,    SIGQUIT,   SIGALRM,
                       SIGUSR1, SIGUSR2, SIGPIPE,   SIGIO,     SIGPROF,
                       SIGPWR,  SIGXCPU, SIGSTKFLT, SIGVTALRM, SIGXFSZ};

}  // namespace

std::vector<int> stopSignals() {
    std::vector<int> signals(std::begin(SIGNALS), std::end(SIGNALS));
    for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal) {
        signals.push_back(signal);
    }
    return signals;
}

std::string nameOfSignal(int signal) {
    if (const char* name = sigabbrev_np(signal)) {
        return std::string("SIG") + name;
    }
    const int distance = signal - SIGRTMIN;
    return "SIGRTMIN" + (distance == 0 ? "" : '+' + std::to_string(distance));
}

ExitCode exitCodeOfSignal(int signal) {
    return static_cast<ExitCode>(STOPPED + signal);
}

bool isStopped(ExitCode exitCode) {
    return static_cast<int>(exitCode) > STOPPED;
}

}  // namespace ovmem::cli
