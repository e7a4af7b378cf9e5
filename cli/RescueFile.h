#ifndef CLI_RESCUEFILE_H
#define CLI_RESCUEFILE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ovmem::cli {

// What became of events that were to be saved.
struct Rescue {
    // Their paths, in the order of the bytes. More than one if a file may not
    // be as large (ulimit -f); none if nothing could be saved.
    std::vector<std::string> files;

    // How many bytes from the front are in the files.
    std::size_t bytes = 0;

    // Whether all bytes are there and on the disk. If not, what is there may
    // be damaged, and no other place had more.
    bool complete = false;
};

// Saves events that were taken from the service and could not be delivered to
// standard output: in a new file, readable by its owner only, in the first of
// the listRescuePlaces() that takes it. A file has its name only once it is
// complete; until then it is hidden.
Rescue saveToRescueFile(std::string_view events);

}  // namespace ovmem::cli

#endif
