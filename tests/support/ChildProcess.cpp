#include "tests/support/ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <system_error>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OvMemTest {

namespace {

using Clock = std::chrono::steady_clock;

int checked(int result, const char* call) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return result;
}

[[noreturn]] void runAsChild(const std::function<int()>& function) {
    int status = 254;
    try {
        status = function();
    } catch (const std::exception& exception) {
        std::cerr << "thrown: " << exception.what() << std::endl;
    } catch (...) {
        std::cerr << "thrown" << std::endl;
    }
    std::exit(status);
}

// Appends what can be read; closes the pipe at its end.
void drain(int& pipe, std::string& text) {
    std::array<char, 4096> buffer;
    const ssize_t length = ::read(pipe, buffer.data(), buffer.size());
    if (length > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(length));
    } else if (length == 0 || errno != EINTR) {
        ::close(pipe);
        pipe = -1;
    }
}

ChildProcess::Milliseconds left(Clock::time_point deadline) {
    const auto rest =
        std::chrono::ceil<ChildProcess::Milliseconds>(deadline - Clock::now());
    return std::max(rest, ChildProcess::Milliseconds(0));
}

}  // namespace

ChildProcess::ChildProcess(const std::function<int()>& function) {
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
    std::array<int, 2> out;
    std::array<int, 2> err;
    checked(::pipe(out.data()), "pipe");
    checked(::pipe(err.data()), "pipe");
    process = checked(::fork(), "fork");
    if (process == 0) {
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(err[1], STDERR_FILENO);
        for (const int descriptor : {out[0], out[1], err[0], err[1]}) {
            ::close(descriptor);
        }
        runAsChild(function);
    }
    ::close(out[1]);
    ::close(err[1]);
    outputPipe = out[0];
    errorPipe = err[0];
}

ChildProcess::~ChildProcess() {
    kill();
}

bool ChildProcess::awaitOutput(const std::string& text, Milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (outputText.find(text) == std::string::npos) {
        if (!read(left(deadline))) {
            return false;
        }
    }
    return true;
}

bool ChildProcess::awaitEnd(Milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (outputPipe >= 0 || errorPipe >= 0) {
        if (!read(left(deadline))) {
            return false;
        }
    }
    reap();
    return true;
}

void ChildProcess::kill() {
    if (!waitStatus) {
        ::kill(process, SIGKILL);
        while (outputPipe >= 0 || errorPipe >= 0) {
            read(Milliseconds(-1));
        }
        reap();
    }
}

std::optional<int> ChildProcess::exitStatus() const {
    if (waitStatus && WIFEXITED(*waitStatus)) {
        return WEXITSTATUS(*waitStatus);
    }
    return {};
}

std::optional<int> ChildProcess::signal() const {
    if (waitStatus && WIFSIGNALED(*waitStatus)) {
        return WTERMSIG(*waitStatus);
    }
    return {};
}

const std::string& ChildProcess::output() const {
    return outputText;
}

const std::string& ChildProcess::errors() const {
    return errorText;
}

// False when nothing came in time or both pipes are at their end.
bool ChildProcess::read(Milliseconds limit) {
    std::array<pollfd, 2> pipes{
        {{outputPipe, POLLIN, 0}, {errorPipe, POLLIN, 0}}};
    if (outputPipe < 0 && errorPipe < 0) {
        return false;
    }
    const int ready =
        ::poll(pipes.data(), pipes.size(), static_cast<int>(limit.count()));
    if (ready <= 0) {
        return ready < 0 && errno == EINTR;
    }
    if (pipes[0].revents != 0) {
        drain(outputPipe, outputText);
    }
    if (pipes[1].revents != 0) {
        drain(errorPipe, errorText);
    }
    return true;
}

void ChildProcess::reap() {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    waitStatus = status;
}

void waitToBeKilled() {
    for (;;) {
        ::pause();
    }
}

}  // namespace OvMemTest
