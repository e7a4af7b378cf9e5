#ifndef CLI_EVENTINPUT_H
#define CLI_EVENTINPUT_H

#include <string>
#include <vector>

namespace ovmem::cli {

// The contents of `files`, one after the other, byte for byte; "-" is standard
// input, and so is an empty list.
//
// Refuses a text that holds a NUL byte: the transport carries NUL-terminated
// texts and would drop what follows it.
//
// THROWS: Failure with ExitCode::Usage for a NUL, and for standard input named
// twice; with ExitCode::InputOutput for a file that cannot be read.
std::string readEvents(const std::vector<std::string>& files);

}  // namespace ovmem::cli

#endif
