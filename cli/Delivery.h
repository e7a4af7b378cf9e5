#ifndef CLI_DELIVERY_H
#define CLI_DELIVERY_H

#include <string>

#include "cli/SignalWatch.h"
#include "cli/TextSource.h"

namespace ovmem::cli {

// Writes fetched events to standard output: what `output` makes, or the events
// as they are where it is empty. If that fails, also for want of memory, or the
// watch is over, saves the events elsewhere. So does a key that makes a
// terminal drop its output, though everything was written.
//
// THROWS: Failure with ExitCode::InputOutput or of a signal, unless everything
// was written for good. It
// says how much was, and where the events are.
void deliver(const std::string& events, const TextSource& output,
             SignalWatch& watch);

}  // namespace ovmem::cli

#endif
