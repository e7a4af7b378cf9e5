#ifndef CLI_SAVEDEVENTS_H
#define CLI_SAVEDEVENTS_H

#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "cli/Descriptor.h"

namespace ovmem::cli {

// A file in which saveToRescueFile() saved events.
struct SavedFile {
    std::string name;
    std::string path;
    std::size_t bytes;
    std::time_t when;  // it was written
};

struct SavedFiles {
    std::vector<SavedFile> files;
    std::string problems;  // where nobody could look, and why; empty: nowhere
};

// All that are complete, in all listRescuePlaces(), in the order of their
// names, which is that of their times. What is no regular file of this user, is
// reached through a link, or has a name elsewhere as well, is none.
SavedFiles listSavedFiles();

// THROWS: Failure with ExitCode::InputOutput if there are problems.
void requireComplete(const SavedFiles& saved);

// Such a file, open.
class SavedEvents {
public:
    // Finds it by its name in the list, or by its path, wherever it is.
    //
    // THROWS: Failure with ExitCode::Usage if no file can have that name, with
    // ExitCode::InputOutput if there is none or if it cannot be read.
    SavedEvents(const std::string& nameOrPath, const SavedFiles& all);

    // The same for two names of one file, and for no others.
    using Identity = std::pair<dev_t, ino_t>;
    Identity identity() const { return number; }

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

    // THROWS: Failure with ExitCode::InputOutput if the folder lets nobody
    // remove a file.
    void requireRemovable() const;

    // Removes the file. Returns errno, 0 if it is removed.
    int remove() const;

private:
    const SavedFile file;
    const Descriptor opened;
    Identity number;
};

}  // namespace ovmem::cli

#endif
