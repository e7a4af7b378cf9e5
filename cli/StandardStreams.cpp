#include "cli/StandardStreams.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <new>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
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

// Between two pieces there is a chance to give up: writing to a file cannot be
// interrupted.
const std::size_t LARGEST_PIECE = 1024 * 1024;

// False if `patience` milliseconds passed first; negative: without limit.
bool waitUntilWritable(int descriptor, int patience) {
    pollfd waiting = {descriptor, POLLOUT, 0};
    return poll(&waiting, 1, patience) != 0;
}

Written writeAll(int descriptor, std::string_view bytes,
                 const std::function<bool()>& giveUp) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        if (giveUp()) {
            return {done, EINTR};
        }
        const std::string_view piece = bytes.substr(done, LARGEST_PIECE);
        const ssize_t count = write(descriptor, piece.data(), piece.size());
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (count == 0) {
            return {done, EIO};
        } else if (errno == EAGAIN) {
            waitUntilWritable(descriptor, -1);
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
    std::signal(SIGXFSZ, SIG_IGN);
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

Written tryWriteOutput(std::string_view bytes,
                       const std::function<bool()>& giveUp) {
    return tryWriteOutput([bytes](const TextSink& sink) { sink(bytes); },
                          giveUp);
}

Written tryWriteOutput(const TextSource& text,
                       const std::function<bool()>& giveUp) {
    Written written = {0, 0};
    try {
        text([&](std::string_view piece) {
            const Written part = writeAll(STDOUT_FILENO, piece, giveUp);
            written.bytes += part.bytes;
            written.error = part.error;
            return part.error == 0;
        });
    } catch (const std::bad_alloc&) {
        written.error = ENOMEM;
    }
    if (written.error == 0 && written.bytes > 0) {
        written.error = errorOnClose(STDOUT_FILENO);
    }
    return written;
}

int drainOutput(const std::function<bool()>& giveUp) {
    if (isatty(STDOUT_FILENO) == 0) {
        return 0;
    }
    // In the background, waiting for a terminal would stop the process.
    sigset_t background;
    sigset_t former;
    sigemptyset(&background);
    sigaddset(&background, SIGTTOU);
    pthread_sigmask(SIG_BLOCK, &background, &former);
    int error = EINTR;
    while (error == EINTR && !giveUp()) {
        error = tcdrain(STDOUT_FILENO) == 0 ? 0 : errno;
    }
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    return error;
}

void writeOutput(std::string_view bytes) {
    const Written written = tryWriteOutput(bytes);
    if (written.error != 0) {
        throw outputFailure(written.error);
    }
}

void writeWords(std::string_view words, int patience) {
    // A pipe that is writable takes a piece of this size without blocking.
    while (!words.empty() && waitUntilWritable(STDERR_FILENO, patience)) {
        const std::string_view piece = words.substr(0, PIPE_BUF);
        const Written written =
            writeAll(STDERR_FILENO, piece, [] { return false; });
        if (written.error != 0) {
            return;
        }
        words.remove_prefix(written.bytes);
    }
}

}  // namespace ovmem::cli
