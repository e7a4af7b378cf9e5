#ifndef CLI_EVENTINPUT_H
#define CLI_EVENTINPUT_H

#include <cstddef>
#include <string>
#include <vector>

#include "cli/Failure.h"

namespace ovmem::cli {

// The most that one put carries, in bytes: 512 MiB, as much as the emulator
// takes. Another service may take less, and says so itself.
inline constexpr std::size_t MAX_EVENT_BYTES = 512 * 1024 * 1024;

// The contents of `files`, one after the other, byte for byte; "-" is standard
// input, and so is an empty list.
//
// Refuses a text that holds a NUL byte: the transport carries NUL-terminated
// texts and would drop what follows it. Refuses one of more than
// MAX_EVENT_BYTES. Both as soon as it is known, which need not be at the end:
// what is missing, and regular files that are too large, are found before
// anything is read, so that standard input is not taken in vain.
//
// THROWS: Failure with ExitCode::Usage for a NUL, too large a text, and
// standard input named twice; with ExitCode::InputOutput for a file that
// cannot be read.
std::string readEvents(const std::vector<std::string>& files);

// What refuses events that a put cannot carry: for the NUL at `offset` of what
// `name` says, and for more than MAX_EVENT_BYTES.
Failure hasNul(std::size_t offset, const std::string& name,
               const std::string& advice);
Failure tooManyBytes(const std::string& advice);

}  // namespace ovmem::cli

#endif
