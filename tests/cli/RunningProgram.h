#ifndef TESTS_CLI_RUNNINGPROGRAM_H
#define TESTS_CLI_RUNNINGPROGRAM_H

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <sys/types.h>

#include "tests/support/TemporaryFolder.h"

namespace OvMemTest {

struct Outcome;

// A program that Program::start() started. It has a time limit; one that
// exceeds it is killed, which is a test failure, and ends with -SIGKILL.
//
//     auto running = program.pipeOutput().start({"get"});
//     running.waitUntil([&] { return running.outputIsFull(); });
//     running.signal(SIGTERM);
//     const Outcome outcome = running.waitForEnd();
class RunningProgram {
public:
    // Where it runs and what the descriptors of its streams are. The pipe is
    // owned from now on; negative if there is none.
    RunningProgram(pid_t process, int outputPipe,
                   std::unique_ptr<TemporaryFolder> streams);

    // Kills it if it still runs.
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    // Sends a signal, and waits until it has been taken.
    void signal(int number);

    // Sends one and does not wait.
    void send(int number) const;

    // Waits for something; a test failure if it does not happen in time or
    // cannot any more, because the program has ended.
    void waitUntil(const std::function<bool()>& condition);

    bool hasEnded() const;

    // The reader of its output.

    bool outputIsFull() const;
    std::string readOutput(std::size_t size);
    void closeOutput();

    // Takes what is left of its output, and its end.
    Outcome waitForEnd();

    // The same, but leaves the output where it is until then.
    Outcome waitForEndUnread();

private:
    int reap();
    Outcome finish(std::string output);

    pid_t process;  // 0 when it is reaped
    const int processEnd;
    int outputPipe;
    const std::unique_ptr<TemporaryFolder> folder;
    const std::chrono::steady_clock::time_point limit;
};

}  // namespace OvMemTest

#endif
