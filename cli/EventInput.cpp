#include "cli/EventInput.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "cli/Failure.h"

namespace ovmem::cli {

namespace {

const char STANDARD_INPUT[] = "-";
const std::size_t BLOCK_SIZE = 65536;

// An open file; standard input is borrowed, everything else closed.
class Source {
public:
    explicit Source(const std::string& file)
        : borrowed(file == STANDARD_INPUT),
          name(borrowed ? "standard input" : file),
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

    void appendTo(std::string& text) const {
        std::vector<char> block(BLOCK_SIZE);
        ssize_t count = 0;
        do {
            count = read(descriptor, block.data(), block.size());
            if (count > 0) {
                text.append(block.data(), static_cast<std::size_t>(count));
            }
        } while (count > 0 || (count < 0 && errno == EINTR));
        if (count < 0) {
            fail();
        }
    }

    const std::string& getName() const { return name; }

private:
    [[noreturn]] void fail() const {
        throw Failure{ExitCode::InputOutput,
                      "Cannot read " + name + ": " + std::strerror(errno) + ".",
                      "Nothing was sent."};
    }

    const bool borrowed;
    const std::string name;
    const int descriptor;
};

void refuseNul(const std::string& text, std::size_t begin,
               const std::string& name) {
    const std::size_t nul = text.find('\0', begin);
    if (nul != std::string::npos) {
        throw Failure{ExitCode::Usage,
                      "The byte at offset " + std::to_string(nul - begin) +
                          " of " + name +
                          " is NUL; the transport carries texts and would "
                          "drop what follows it.",
                      "Nothing was sent. Remove the NUL bytes, or send the "
                      "data encoded, for instance with base64."};
    }
}

}  // namespace

std::string readEvents(const std::vector<std::string>& files) {
    if (files.empty()) {
        return readEvents({STANDARD_INPUT});
    }
    if (std::count(files.begin(), files.end(), STANDARD_INPUT) > 1) {
        throw Failure{ExitCode::Usage, "Standard input is named twice.",
                      "Name '-' once."};
    }
    std::string text;
    for (const std::string& file : files) {
        const Source source(file);
        const std::size_t begin = text.size();
        source.appendTo(text);
        refuseNul(text, begin, source.getName());
    }
    return text;
}

}  // namespace ovmem::cli
