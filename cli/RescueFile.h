#ifndef CLI_RESCUEFILE_H
#define CLI_RESCUEFILE_H

#include <optional>
#include <string>
#include <string_view>

namespace ovmem::cli {

// Saves events that were taken from the service and could not be delivered to
// standard output: in a new file, readable by its owner only, in the first of
// these places that takes it:
//
//     $XDG_STATE_HOME/ovmem, or $HOME/.local/state/ovmem
//     the folder for temporary files
//     the current folder
//
// Returns the file's path, or nothing when no place took it.
std::optional<std::string> saveToRescueFile(std::string_view bytes);

}  // namespace ovmem::cli

#endif
