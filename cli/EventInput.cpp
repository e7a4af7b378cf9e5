#include "cli/EventInput.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ovmem::cli {

namespace {

const char STANDARD_INPUT[] = "-";
const std::size_t BLOCK_SIZE = 65536;

void requireRoom(std::size_t taken, std::size_t more) {
    if (more > MAX_EVENT_BYTES - taken) {
        throw tooManyBytes("Nothing was sent. Put them in several parts.");
    }
}

// An open file; standard input is borrowed, everything else closed.
class Source {
public:
    explicit Source(const std::string& file)
        : borrowed(file == STANDARD_INPUT),
          name(borrowed ? "standard input" : "'" + file + "'"),
          descriptor(borrowed ? STDIN_FILENO
                              : open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (descriptor < 0) {
            fail();
        }
    }

    ~Source() {
        if (!borrowed) {
            close(descriptor);
        }
    }

    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    // What a regular file still has to give; 0 for everything else, whose
    // size shows only when it is read.
    std::size_t size() const {
        struct stat state = {};
        if (fstat(descriptor, &state) != 0) {
            fail();
        }
        if (S_ISDIR(state.st_mode)) {
            errno = EISDIR;
            fail();
        }
        const off_t position = lseek(descriptor, 0, SEEK_CUR);
        return S_ISREG(state.st_mode) && state.st_size > position
                   ? static_cast<std::size_t>(state.st_size - position)
                   : 0;
    }

    void appendTo(std::string& text) const {
        const std::size_t begin = text.size();
        std::vector<char> block(BLOCK_SIZE);
        ssize_t count = 0;
        do {
            count = read(descriptor, block.data(), block.size());
            if (count > 0) {
                append({block.data(), static_cast<std::size_t>(count)}, begin,
                       text);
            }
        } while (count > 0 || (count < 0 && mayReadAgain()));
        if (count < 0) {
            fail();
        }
    }

private:
    void append(std::string_view block, std::size_t begin,
                std::string& text) const {
        const std::size_t nul = block.find('\0');
        if (nul != std::string_view::npos) {
            throw hasNul(text.size() - begin + nul, name,
                         "Nothing was sent. Remove the NUL bytes, or send the "
                         "data encoded, for instance with base64.");
        }
        requireRoom(text.size(), block.size());
        text += block;
    }

    // Whether the failed read() is worth another one. Waits for input where the
    // descriptor does not block.
    bool mayReadAgain() const {
        if (errno == EAGAIN) {
            std::array<pollfd, 1> input = {{{descriptor, POLLIN, 0}}};
            return poll(input.data(), input.size(), -1) >= 0 || errno == EINTR;
        }
        return errno == EINTR;
    }

    [[noreturn]] void fail() const {
        throw Failure{ExitCode::InputOutput,
                      "Cannot read " + name + ": " + std::strerror(errno) + ".",
                      "Nothing was sent."};
    }

    const bool borrowed;
    const std::string name;
    const int descriptor;
};

// The size of a file that can be opened. A pipe with a name is left alone:
// whoever writes to it would take this for the reader, and lose data.
std::size_t sizeOf(const std::string& file) {
    struct stat state = {};
    if (file != STANDARD_INPUT && stat(file.c_str(), &state) == 0 &&
        S_ISFIFO(state.st_mode)) {
        return 0;
    }
    return Source(file).size();
}

void requireUsable(const std::vector<std::string>& files) {
    std::size_t total = 0;
    for (const std::string& file : files) {
        const std::size_t size = sizeOf(file);
        requireRoom(total, size);
        total += size;
    }
}

}  // namespace

Failure hasNul(std::size_t offset, const std::string& name,
               const std::string& advice) {
    return {ExitCode::Usage,
            "The byte at offset " + std::to_string(offset) + " of " + name +
                " is NUL; the transport carries texts and would drop what "
                "follows it.",
            advice};
}

Failure tooManyBytes(const std::string& advice) {
    return {ExitCode::Usage,
            "The events are longer than " + std::to_string(MAX_EVENT_BYTES) +
                " bytes, the most that one put carries.",
            advice};
}

std::string readEvents(const std::vector<std::string>& files) {
    if (files.empty()) {
        return readEvents({STANDARD_INPUT});
    }
    if (std::count(files.begin(), files.end(), STANDARD_INPUT) > 1) {
        throw Failure{ExitCode::Usage, "Standard input is named twice.",
                      "Name '-' once."};
    }
    requireUsable(files);
    std::string text;
    for (const std::string& file : files) {
        Source(file).appendTo(text);
    }
    return text;
}

}  // namespace ovmem::cli
