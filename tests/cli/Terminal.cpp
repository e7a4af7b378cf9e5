#include "tests/cli/Terminal.h"

#include <cerrno>
#include <stdexcept>

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace OvMemTest {

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

}  // namespace OvMemTest
