#include "tests/cli/Terminal.h"

#include <cerrno>
#include <chrono>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace OvMemTest {

namespace {

const int ANSWER_LIMIT = 100000;  // milliseconds

bool isReadable(int descriptor, int patience) {
    pollfd readable = {descriptor, POLLIN, 0};
    return poll(&readable, 1, patience) == 1;
}

}  // namespace

Terminal::Terminal() : master(-1), slave(-1) {
    termios raw = {};
    cfmakeraw(&raw);
    char name[256] = {};
    if (openpty(&master, &slave, name, &raw, nullptr) != 0) {
        throw std::runtime_error("There is no pseudo terminal.");
    }
    fcntl(master, F_SETFD, FD_CLOEXEC);
    fcntl(slave, F_SETFD, FD_CLOEXEC);
    path = name;
}

Terminal::~Terminal() {
    close(master);
    if (slave >= 0) {
        close(slave);
    }
}

// Without a program at the other end, reading ends with an error when all has
// been read.
std::string Terminal::take() {
    close(slave);
    slave = -1;
    std::string bytes;
    char block[4096];
    ssize_t count = 0;
    while ((count = read(master, block, sizeof block)) > 0 ||
           (count < 0 && errno == EINTR)) {
        if (count > 0) {
            bytes.append(block, static_cast<std::size_t>(count));
        }
    }
    return bytes;
}

void Terminal::obeyKeys() const {
    termios state = {};
    tcgetattr(slave, &state);
    state.c_lflag |= ISIG;
    state.c_cc[VINTR] = '\x03';
    state.c_cc[VQUIT] = '\x1C';
    state.c_cc[VSUSP] = '\x1A';
    tcsetattr(slave, TCSANOW, &state);
}

// The letter that follows the key can be read when the key has had its effect.
void Terminal::press(char key) const {
    const char keys[] = {key, 'x'};
    char letter = 0;
    if (write(master, keys, sizeof keys) != sizeof keys ||
        !isReadable(slave, ANSWER_LIMIT) || read(slave, &letter, 1) != 1 ||
        letter != 'x') {
        throw std::runtime_error("The key has no effect.");
    }
}

void Terminal::waitForOutput() const {
    if (!isReadable(master, ANSWER_LIMIT)) {
        throw std::runtime_error("Nothing was written.");
    }
}

std::string Terminal::takeUntilEndOf(const RunningProgram& program) const {
    using Clock = std::chrono::steady_clock;
    const auto limit = Clock::now() + std::chrono::milliseconds(ANSWER_LIMIT);
    const int betweenLooks = 2;
    std::string bytes;
    bool ended = false;
    while (!ended && Clock::now() < limit) {
        ended = program.hasEnded();
        while (isReadable(master, betweenLooks)) {
            char block[4096];
            const ssize_t count = read(master, block, sizeof block);
            if (count <= 0) {
                break;
            }
            bytes.append(block, static_cast<std::size_t>(count));
        }
    }
    return bytes;
}

}  // namespace OvMemTest
