#ifndef CLI_RESCUECOMMANDS_H
#define CLI_RESCUECOMMANDS_H

#include <list>
#include <string>

#include "cli/Options.h"
#include "cli/Reporter.h"
#include "cli/SavedEvents.h"

// What the commands about saved events do without a service.

namespace ovmem::cli {

// 'rescue list': writes a line for each file: name, bytes, time, path, with a
// tab between two.
//
// THROWS: Failure.
void listRescued(const Options& options, const Reporter& reporter);

// 'rescue show': writes the content of the named files in their order.
//
// THROWS: Failure.
void showRescued(const Options& options, const Reporter& reporter);

// For 'rescue put-back': opens and claims the named files and adds them to
// `files`. Returns their events as one text.
//
// THROWS: Failure, also for a NUL, which the transport cannot carry, and,
// before anything is read, for more than MAX_EVENT_BYTES.
std::string claimRescued(const Options& options, std::list<SavedEvents>& files);

// Removes the files once their events are put.
//
// THROWS: Failure with ExitCode::InputOutput that names every file that stays.
void removeRescued(const std::list<SavedEvents>& files);

}  // namespace ovmem::cli

#endif
