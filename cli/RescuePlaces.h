#ifndef CLI_RESCUEPLACES_H
#define CLI_RESCUEPLACES_H

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

// Where events are saved that were taken from the service and could not be
// delivered, and how the files are named.

namespace ovmem::cli {

// The folders, in the order in which they are tried; absolute, each once. They
// need not exist.
//
//     $XDG_STATE_HOME/ovmem
//     $HOME/.local/state/ovmem
//     $TMPDIR or the like, or /tmp if that is no folder
//     the current folder
//     /tmp
//     /var/tmp
std::vector<std::filesystem::path> listRescuePlaces();

// A name that no other run gives: "events-not-delivered-20240501T120000.123456Z
// -4711".
std::string newRescueName();

// The name for a piece of events that cannot stand in one file: with "-07of12"
// after it, so that a shell sorts the pieces. The first one is number 1.
std::string nameOfPiece(const std::string& rescueName, std::size_t number,
                        std::size_t total);

// Whether a file of this name was made by ovmem, and is complete.
bool isRescueName(const std::string& name);

// The name of such a file while it is being written.
std::string nameWhileWriting(const std::string& rescueName);

}  // namespace ovmem::cli

#endif
