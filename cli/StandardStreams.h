#ifndef CLI_STANDARDSTREAMS_H
#define CLI_STANDARDSTREAMS_H

#include <cstddef>
#include <functional>
#include <string_view>

#include "cli/TextSource.h"

// Standard input, output and error as plain descriptors, without buffers: what
// a call reports as written is written.

namespace ovmem::cli {

// Puts something unusable in the place of each standard descriptor that is
// closed, so that no file opened later takes its number, and lets writing to a
// closed pipe, or beyond the size that a file may have, fail instead of ending
// the process. To be called before anything is opened.
void guardStandardStreams();

// Whether standard output takes data at all: open for writing, and no pipe
// without a reader. A full disk shows itself only when written to.
//
// THROWS: Failure with ExitCode::InputOutput.
void requireWritableOutput();

// The result of writing to standard output.
struct Written {
    std::size_t bytes;  // how many got out
    int error;          // errno, 0 if all did
};

// Writes `bytes` as they are, however long nobody takes them. `giveUp` is asked
// before every system call, and so after one that a signal interrupted: true
// ends it with EINTR.
Written tryWriteOutput(
    std::string_view bytes,
    const std::function<bool()>& giveUp = [] { return false; });

// The same for a text that is made while it is written. What it cannot make for
// want of memory ends it with ENOMEM.
Written tryWriteOutput(const TextSource& text,
                       const std::function<bool()>& giveUp);

// Waits until a terminal on standard output has passed on what it was given;
// does nothing where there is none. Returns 0 or errno. `giveUp` is asked as by
// tryWriteOutput().
int drainOutput(const std::function<bool()>& giveUp);

// The same as tryWriteOutput().
//
// THROWS: Failure with ExitCode::InputOutput unless all bytes got out.
void writeOutput(std::string_view bytes);

// Writes `words` to standard error; what cannot be written is dropped, as
// there is nowhere left to say so. So is what nobody takes within `patience`
// milliseconds; negative: without limit.
void writeWords(std::string_view words, int patience = -1);

}  // namespace ovmem::cli

#endif
