#include "cli/StandardStreams.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "cli/Failure.h"

namespace ovmem::cli {

namespace {

Failure outputFailure(int error) {
    return {ExitCode::InputOutput,
            std::string("Cannot write to standard output: ") +
                std::strerror(error) + ".",
            "Give standard output a place to go."};
}

bool waitUntilWritable(int descriptor) {
    pollfd waiting = {descriptor, POLLOUT, 0};
    return poll(&waiting, 1, -1) == 1 || errno == EINTR;
}

Written writeAll(int descriptor, std::string_view bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno == EAGAIN && waitUntilWritable(descriptor)) {
            continue;
        } else if (errno != EINTR) {
            return {done, errno};
        }
    }
    return {done, 0};
}

// Some file systems report a failed write only when the file is closed.
int errorOnClose(int descriptor) {
    const int copy = dup(descriptor);
    return copy >= 0 && close(copy) == 0 ? 0 : errno;
}

}  // namespace

void guardStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO;
         ++descriptor) {
        if (fcntl(descriptor, F_GETFL) >= 0) {
            continue;
        }
        // Opened the wrong way round, so that its use still fails. The lowest
        // free number is this one.
        open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

void requireWritableOutput() {
    const int flags = fcntl(STDOUT_FILENO, F_GETFL);
    if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY) {
        throw outputFailure(EBADF);
    }
    pollfd state = {STDOUT_FILENO, POLLOUT, 0};
    if (poll(&state, 1, 0) == 1 && (state.revents & POLLERR) != 0) {
        throw outputFailure(EPIPE);
    }
}

Written tryWriteOutput(std::string_view bytes) {
    Written written = writeAll(STDOUT_FILENO, bytes);
    if (written.error == 0 && !bytes.empty()) {
        written.error = errorOnClose(STDOUT_FILENO);
    }
    return written;
}

void writeOutput(std::string_view bytes) {
    const Written written = tryWriteOutput(bytes);
    if (written.error != 0) {
        throw outputFailure(written.error);
    }
}

void writeWords(std::string_view words) {
    writeAll(STDERR_FILENO, words);
}

}  // namespace ovmem::cli
