#include "cli/SavedEvents.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/Failure.h"
#include "cli/RescuePlaces.h"

namespace ovmem::cli {

namespace fs = std::filesystem;

namespace {

const std::size_t BLOCK_SIZE = 65536;

bool isOwn(const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_uid == geteuid();
}

std::optional<SavedFile> describe(const fs::path& path) {
    struct stat status = {};
    const std::string name = path.filename().string();
    if (!isRescueName(name) || lstat(path.c_str(), &status) != 0 ||
        !isOwn(status)) {
        return std::nullopt;
    }
    return SavedFile{name, path.string(),
                     static_cast<std::size_t>(status.st_size), status.st_mtime};
}

SavedFile find(const std::string& nameOrPath) {
    for (const SavedFile& file : listSavedFiles()) {
        if (file.name == nameOrPath || file.path == nameOrPath) {
            return file;
        }
    }
    throw Failure{ExitCode::Usage,
                  "No saved events are named '" + nameOrPath + "'.",
                  "'ovmem rescue list' names those there are."};
}

Failure failure(const std::string& what, const std::string& why,
                const std::string& advice) {
    return {ExitCode::InputOutput, what + ": " + why + ".", advice};
}

}  // namespace

std::vector<SavedFile> listSavedFiles() {
    std::vector<SavedFile> files;
    for (const fs::path& place : listRescuePlaces()) {
        std::error_code failed;  // a place that is not there has none
        fs::directory_iterator entry(place, failed);
        for (; !failed && entry != fs::directory_iterator();
             entry.increment(failed)) {
            if (const auto file = describe(entry->path())) {
                files.push_back(*file);
            }
        }
    }
    // In one second there may be several, hence not by their times.
    std::stable_sort(files.begin(), files.end(),
                     [](const SavedFile& left, const SavedFile& right) {
                         return strverscmp(left.name.c_str(),
                                           right.name.c_str()) < 0;
                     });
    return files;
}

SavedEvents::SavedEvents(const std::string& nameOrPath)
    : file(find(nameOrPath)),
      opened(open(file.path.c_str(),
                  O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)) {
    struct stat status = {};
    const bool readable =
        opened.get() >= 0 && fstat(opened.get(), &status) == 0;
    if (!readable || !isOwn(status)) {
        throw failure("Cannot read " + file.path,
                      readable ? "It is no longer a file of your own"
                               : std::strerror(errno),
                      "The file is as it was.");
    }
}

std::string SavedEvents::read() const {
    std::string events;
    std::vector<char> block(BLOCK_SIZE);
    while (true) {
        const ssize_t count = ::read(opened.get(), block.data(), block.size());
        if (count == 0) {
            return events;
        }
        if (count > 0) {
            events.append(block.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            throw failure("Cannot read " + file.path, std::strerror(errno),
                          "The file is as it was.");
        }
    }
}

void SavedEvents::claim() const {
    const bool locked = flock(opened.get(), LOCK_EX | LOCK_NB) == 0;
    if (!locked && errno != EWOULDBLOCK) {
        throw failure("Cannot lock " + file.path, std::strerror(errno),
                      "Nothing was sent. Write the events with 'ovmem rescue "
                      "show', put them with 'ovmem put', then remove the "
                      "file.");
    }
    // By the name and not by the number of links: the hidden name may be left
    // as a second one.
    struct stat status = {};
    const bool gone = lstat(file.path.c_str(), &status) != 0 && errno == ENOENT;
    if (!locked || gone) {
        throw failure("Cannot put back " + file.name,
                      "that is being done already, or has just been",
                      "Nothing was sent. See 'ovmem rescue list'.");
    }
}

int SavedEvents::remove() const {
    return unlink(file.path.c_str()) == 0 ? 0 : errno;
}

}  // namespace ovmem::cli
