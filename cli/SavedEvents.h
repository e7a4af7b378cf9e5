#ifndef CLI_SAVEDEVENTS_H
#define CLI_SAVEDEVENTS_H

#include <ctime>
#include <string>
#include <vector>

#include "cli/Descriptor.h"

namespace ovmem::cli {

// A file in which saveToRescueFile() saved events.
struct SavedFile {
    std::string name;
    std::string path;
    std::size_t bytes;
    std::time_t when;  // it was written
};

// All that are complete, in all listRescuePlaces(), in the order of their
// names, which is that of their times. What is no regular file of this user, or
// is reached through a link, is none.
std::vector<SavedFile> listSavedFiles();

// Such a file, open.
class SavedEvents {
public:
    // Finds it by its name or its path.
    //
    // THROWS: Failure with ExitCode::Usage if there is none, with
    // ExitCode::InputOutput if it cannot be read.
    explicit SavedEvents(const std::string& nameOrPath);

    const std::string& name() const { return file.name; }
    const std::string& path() const { return file.path; }
    std::size_t bytes() const { return file.bytes; }

    // All of it.
    //
    // THROWS: Failure with ExitCode::InputOutput.
    std::string read() const;

    // Takes the file for putting it back, until the end of this object's life.
    //
    // THROWS: Failure with ExitCode::InputOutput if somebody else has taken it,
    // or has put it back since it was opened, or if it cannot be locked.
    void claim() const;

    // Removes the file. Returns errno, 0 if it is removed.
    int remove() const;

private:
    const SavedFile file;
    const Descriptor opened;
};

}  // namespace ovmem::cli

#endif
