#ifndef CLI_SIGNALWATCH_H
#define CLI_SIGNALWATCH_H

#include <chrono>
#include <csignal>
#include <mutex>
#include <optional>
#include <thread>

#include <pthread.h>

#include "cli/Reporter.h"

namespace ovmem::cli {

// Keeps a signal that says "stop" from ending ovmem while events are on their
// way, and sees to it that ovmem ends all the same.
//
//     SignalWatch watch(grace, reporter);
//     ...                                          // SIGTERM has no effect
//     watch.enter(SignalWatch::Phase::Delivering);
//     while (... && !watch.isOver()) write(...);   // fails with EINTR
//
// The signals are TERM, INT, HUP and QUIT, but for those that were ignored
// when ovmem was started (nohup). The first one is noted, and the grace
// begins. What a second one does, or the end of the grace, depends on the
// phase:
//
//     Registering, Asking    ovmem says what may be lost and ends at once
//     Delivering             isOver() becomes true
//     Saving                 as Asking; there are at least five seconds for it
//     Telling                the same, without a word; nothing, if the first
//                            one came before
//
// The same signal again within a quarter of a second counts as one: timeout(1)
// signals its child and then its whole group.
//
// Threads: the signals are blocked, and a thread waits for them, so that no
// system call of the transport is interrupted. Construct and destroy a watch
// on the thread that writes, before any other thread is started; one at a time.
class SignalWatch {
public:
    enum class Phase { Registering, Asking, Delivering, Saving, Telling };
    using Duration = std::chrono::milliseconds;

    // Begins to watch, in the phase Registering. The reporter is borrowed.
    //
    // THROWS: Failure with ExitCode::InputOutput without a thread, or
    // std::bad_alloc; the signals are then as they were.
    SignalWatch(Duration grace, const Reporter& reporter);

    // The signals have no effect from now on: the program is about to end.
    ~SignalWatch();

    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    // To be called on the thread that constructed the watch.
    void enter(Phase next);

    // The first signal; 0 if there was none.
    int signal() const;

    // Whether the delivery is to be given up. When this becomes true, the
    // system calls of the thread that constructed the watch fail with EINTR
    // until it enters another phase.
    bool isOver() const;

private:
    using Clock = std::chrono::steady_clock;

    void watch();
    int waitForSignal();
    std::optional<Duration> untilNext() const;
    void hear(int number);
    void hurry();
    [[noreturn]] void endNow() const;

    const Duration grace;
    const Reporter& reporter;
    const pthread_t writer;
    sigset_t waitedFor;

    mutable std::mutex mutex;  // guards what follows
    Phase phase = Phase::Registering;
    bool finished = false;
    bool over = false;
    bool stopped = false;  // before Telling
    int first = 0;
    int latest = 0;
    Clock::time_point latestAt;
    std::optional<Clock::time_point> deadline;

    std::thread thread;
};

}  // namespace ovmem::cli

#endif
