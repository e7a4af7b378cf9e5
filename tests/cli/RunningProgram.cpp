#include "tests/cli/RunningProgram.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/cli/Program.h"

namespace OvMemTest {

namespace {

using Clock = std::chrono::steady_clock;

const std::chrono::seconds TIME_LIMIT{100};
const std::chrono::milliseconds BETWEEN_LOOKS{2};

// For poll.
int millisecondsUntil(Clock::time_point time) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(
        std::max(time - Clock::now(), Clock::duration::zero()));
    return static_cast<int>(left.count());
}

// Whether the signal waits for a thread that takes it.
bool isPending(pid_t process, int number) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;) {
        if (word == "ShdPnd:") {
            std::uint64_t pending = 0;
            status >> std::hex >> pending;
            return (pending >> (number - 1) & 1) != 0;
        }
    }
    return false;
}

}  // namespace

RunningProgram::RunningProgram(pid_t started, int pipe,
                               std::unique_ptr<TemporaryFolder> streams)
    : process(started),
      processEnd(static_cast<int>(syscall(SYS_pidfd_open, started, 0))),
      outputPipe(pipe),
      folder(std::move(streams)),
      limit(Clock::now() + TIME_LIMIT) {}

RunningProgram::~RunningProgram() {
    if (process != 0) {
        send(SIGKILL);
        reap();
    }
    closeOutput();
    close(processEnd);
}

void RunningProgram::signal(int number) {
    send(number);
    while (!hasEnded() && isPending(process, number) && Clock::now() < limit) {
        std::this_thread::sleep_for(BETWEEN_LOOKS);
    }
}

void RunningProgram::send(int number) const {
    kill(process, number);
}

void RunningProgram::waitUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        if (hasEnded()) {
            // It may have come true between the two looks.
            EXPECT_TRUE(condition()) << "The program has ended.";
            return;
        }
        if (Clock::now() > limit) {
            ADD_FAILURE() << "It did not happen in time.";
            return;
        }
        std::this_thread::sleep_for(BETWEEN_LOOKS);
    }
}

bool RunningProgram::hasEnded() const {
    pollfd end = {processEnd, POLLIN, 0};
    return poll(&end, 1, 0) == 1;
}

bool RunningProgram::outputIsFull() const {
    int waiting = 0;
    ioctl(outputPipe, FIONREAD, &waiting);
    return waiting == fcntl(outputPipe, F_GETPIPE_SZ);
}

std::string RunningProgram::readOutput(std::size_t size) {
    std::string bytes(size, '\0');
    std::size_t done = 0;
    while (done < size) {
        pollfd readable = {outputPipe, POLLIN, 0};
        if (poll(&readable, 1, millisecondsUntil(limit)) == 0) {
            break;
        }
        const ssize_t count =
            read(outputPipe, bytes.data() + done, size - done);
        if (count <= 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    bytes.resize(done);
    return bytes;
}

void RunningProgram::closeOutput() {
    if (outputPipe >= 0) {
        close(outputPipe);
        outputPipe = -1;
    }
}

Outcome RunningProgram::waitForEnd() {
    std::string output;
    if (outputPipe >= 0) {
        const std::size_t block = 65536;
        std::string piece;
        do {
            piece = readOutput(block);
            output += piece;
        } while (piece.size() == block);
    }
    return finish(std::move(output));
}

Outcome RunningProgram::waitForEndUnread() {
    pollfd end = {processEnd, POLLIN, 0};
    return poll(&end, 1, millisecondsUntil(limit)) == 1 ? waitForEnd()
                                                        : finish("");
}

Outcome RunningProgram::finish(std::string output) {
    pollfd end = {processEnd, POLLIN, 0};
    if (poll(&end, 1, millisecondsUntil(limit)) == 0) {
        ADD_FAILURE() << "The program did not end in time.";
        send(SIGKILL);
    }
    const int exitCode = reap();
    if (output.empty()) {
        output = readFile(*folder / "output");
    }
    return {exitCode, std::move(output), readFile(*folder / "errors")};
}

int RunningProgram::reap() {
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    process = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace OvMemTest
