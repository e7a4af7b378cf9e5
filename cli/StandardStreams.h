#ifndef CLI_STANDARDSTREAMS_H
#define CLI_STANDARDSTREAMS_H

#include <cstddef>
#include <string_view>

// Standard input, output and error as plain descriptors, without buffers: what
// a call reports as written is written.

namespace ovmem::cli {

// Puts something unusable in the place of each standard descriptor that is
// closed, so that no file opened later takes its number, and lets writing to a
// closed pipe fail instead of ending the process. To be called before anything
// is opened.
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

// Writes `bytes` as they are.
Written tryWriteOutput(std::string_view bytes);

// The same.
//
// THROWS: Failure with ExitCode::InputOutput unless all bytes got out.
void writeOutput(std::string_view bytes);

// Writes `words` to standard error; what cannot be written is dropped, as
// there is nowhere left to say so.
void writeWords(std::string_view words);

}  // namespace ovmem::cli

#endif
