#include "cli/SignalWatch.h"

#include <algorithm>
#include <system_error>

#include <unistd.h>

#include "cli/Failure.h"
#include "cli/StopSignal.h"

namespace ovmem::cli {

namespace {

// Interrupts a system call of the writing thread, and ends the watching one.
// Its default is to be ignored, so that nobody relies on it. The writing thread
// has it blocked but while it delivers: somebody else may send it as well.
const int NUDGE = SIGURG;

const SignalWatch::Duration LEAST_FOR_SAVING{5000};
const SignalWatch::Duration ECHO{250};
const SignalWatch::Duration BETWEEN_NUDGES{20};

void ignoreNudge(int /*signal*/) {}

bool isIgnored(int signal) {
    struct sigaction current = {};
    sigaction(signal, nullptr, &current);
    return current.sa_handler == SIG_IGN;
}

sigset_t signalsToWatch() {
    sigset_t set;
    sigemptyset(&set);
    for (int i = 0; i < STOP_SIGNALS; ++i) {
        if (!isIgnored(stopSignal(i))) {
            sigaddset(&set, stopSignal(i));
        }
    }
    return set;
}

Failure withoutThread(const std::system_error& error) {
    return {ExitCode::InputOutput,
            "Cannot start a thread that watches for signals: " +
                error.code().message() + ".",
            "Nothing was asked for. Allow ovmem one more thread."};
}

void changeNudge(int how) {
    sigset_t nudge;
    sigemptyset(&nudge);
    sigaddset(&nudge, NUDGE);
    pthread_sigmask(how, &nudge, nullptr);
}

// What is said when ovmem ends at once.
Failure endedIn(SignalWatch::Phase phase, int signal) {
    const std::string text = "Stopped by " + nameOfSignal(signal);
    const ExitCode code = exitCodeOfSignal(signal);
    switch (phase) {
        case SignalWatch::Phase::Registering:
            return {code, text + " before the events were asked for.",
                    "Nothing is lost; what waits for the client still waits."};
        case SignalWatch::Phase::Asking:
            return {code, text + " before the service had answered.",
                    "If the service has handed out events by now, they are "
                    "lost. If not, they still wait for the client."};
        case SignalWatch::Phase::Delivering:
        case SignalWatch::Phase::Saving:
        case SignalWatch::Phase::Telling:
            break;
    }
    // The file may have its name already, and only the disk be slow.
    return {code, text + " while the events were being saved.",
            "What standard output has not taken may be lost. 'ovmem rescue "
            "list' names the events if they are complete; if not, what there "
            "is of them is in the files .events-not-delivered-* of the places "
            "that 'ovmem --help' names."};
}

}  // namespace

SignalWatch::SignalWatch(Duration graceAfterSignal, const Reporter& voice)
    : grace(graceAfterSignal),
      reporter(voice),
      writer(pthread_self()),
      waitedFor(signalsToWatch()) {
    sigaddset(&waitedFor, NUDGE);
    struct sigaction nudged = {};
    nudged.sa_handler = ignoreNudge;  // without SA_RESTART
    sigaction(NUDGE, &nudged, nullptr);
    // The thread is started with all of them blocked.
    sigset_t former;
    pthread_sigmask(SIG_BLOCK, &waitedFor, &former);
    try {
        thread = std::thread(&SignalWatch::watch, this);
    } catch (const std::system_error& error) {
        pthread_sigmask(SIG_SETMASK, &former, nullptr);
        throw withoutThread(error);
    } catch (...) {  // no memory for it
        pthread_sigmask(SIG_SETMASK, &former, nullptr);
        throw;
    }
}

SignalWatch::~SignalWatch() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        finished = true;
    }
    pthread_kill(thread.native_handle(), NUDGE);
    thread.join();
}

void SignalWatch::enter(Phase next) {
    const std::lock_guard<std::mutex> lock(mutex);
    changeNudge(next == Phase::Delivering ? SIG_UNBLOCK : SIG_BLOCK);
    phase = next;
    if (phase == Phase::Saving && first != 0) {
        deadline = Clock::now() + std::max(grace, LEAST_FOR_SAVING);
    }
    if (phase == Phase::Telling) {
        // If it was told to stop, it does not wait long for a reader.
        stopped = first != 0;
        deadline.reset();
    }
}

int SignalWatch::signal() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return first;
}

bool SignalWatch::isOver() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return over;
}

void SignalWatch::watch() {
    while (true) {
        const int number = waitForSignal();
        const std::lock_guard<std::mutex> lock(mutex);
        if (finished) {
            return;
        }
        if (number > 0 && number != NUDGE) {
            hear(number);
        }
        if (deadline && Clock::now() >= *deadline) {
            hurry();
        }
        if (over && phase == Phase::Delivering) {
            // Again and again: one nudge may come just before the system call
            // that it is to interrupt.
            pthread_kill(writer, NUDGE);
        }
    }
}

// The signal that came; not positive if something else is to be done.
int SignalWatch::waitForSignal() {
    const std::optional<Duration> time = untilNext();
    if (!time) {
        return sigwaitinfo(&waitedFor, nullptr);
    }
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*time);
    const std::chrono::nanoseconds rest = *time - seconds;
    const timespec limit = {seconds.count(), rest.count()};
    return sigtimedwait(&waitedFor, nullptr, &limit);
}

std::optional<SignalWatch::Duration> SignalWatch::untilNext() const {
    const std::lock_guard<std::mutex> lock(mutex);
    if (over && phase == Phase::Delivering) {
        return BETWEEN_NUDGES;
    }
    if (!deadline) {
        return std::nullopt;
    }
    const auto left = std::chrono::ceil<Duration>(*deadline - Clock::now());
    return std::max(left, Duration::zero());
}

void SignalWatch::hear(int number) {
    const auto now = Clock::now();
    if (stopped || (number == latest && now < latestAt + ECHO)) {
        return;
    }
    latest = number;
    latestAt = now;
    if (first != 0) {
        hurry();
        return;
    }
    first = number;
    const bool saved = phase == Phase::Saving || phase == Phase::Telling;
    deadline = now + (saved ? std::max(grace, LEAST_FOR_SAVING) : grace);
}

void SignalWatch::hurry() {
    if (over || phase != Phase::Delivering) {
        endNow();
    }
    over = true;
    // For a write that cannot be interrupted.
    deadline = Clock::now() + std::max(grace, LEAST_FOR_SAVING);
}

void SignalWatch::endNow() const {
    if (phase != Phase::Telling) {
        reporter.report(reportFailure(endedIn(phase, first)));
    }
    _exit(static_cast<int>(exitCodeOfSignal(first)));
}

}  // namespace ovmem::cli
