#include "cli/SavedEvents.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/Failure.h"
#include "cli/RescuePlaces.h"
#include "cli/ShellWord.h"

namespace ovmem::cli {

namespace fs = std::filesystem;

namespace {

const std::size_t BLOCK_SIZE = 65536;

bool isSame(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Another name could be a file that somebody wants to be sent and removed. The
// hidden one is left where a file system lets it be linked but not removed.
bool hasOtherNames(const fs::path& path, const struct stat& status) {
    struct stat hidden = {};
    const fs::path former =
        path.parent_path() / nameWhileWriting(path.filename().string());
    return status.st_nlink > 2 ||
           (status.st_nlink == 2 &&
            (lstat(former.c_str(), &hidden) != 0 || !isSame(status, hidden)));
}

bool isOwn(const fs::path& path, const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
           !hasOtherNames(path, status);
}

bool isMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

void addProblem(SavedFiles& saved, const fs::path& path,
                const std::string& why) {
    saved.problems += (saved.problems.empty() ? "" : "; ") +
                      shellWord(path.string()) + ": " + why;
}

void addIfSaved(SavedFiles& saved, const fs::path& path) {
    struct stat status = {};
    const std::string name = path.filename().string();
    if (!isRescueName(name)) {
        return;
    }
    if (lstat(path.c_str(), &status) != 0) {
        const int error = errno;
        if (!isMissing(error)) {
            addProblem(saved, path, std::strerror(error));
        }
    } else if (isOwn(path, status)) {
        saved.files.push_back({name, path.string(),
                               static_cast<std::size_t>(status.st_size),
                               status.st_mtime});
    }
}

// Several may be in one second, hence not by their times.
bool isEarlier(const SavedFile& left, const SavedFile& right) {
    return strverscmp(left.name.c_str(), right.name.c_str()) < 0;
}

// The path of a file that need not exist, from the root.
fs::path absolute(const fs::path& path) {
    std::error_code failed;
    const fs::path folder =
        fs::canonical(fs::absolute(path, failed).parent_path(), failed);
    return path.is_absolute() || failed ? path : folder / path.filename();
}

SavedFile find(const std::string& nameOrPath, const SavedFiles& all) {
    SavedFiles found;
    const bool isPath = nameOrPath.find('/') != std::string::npos;
    if (isPath) {
        addIfSaved(found, absolute(nameOrPath));
    } else {
        const SavedFile wanted{nameOrPath, "", 0, 0};
        const auto file = std::lower_bound(all.files.begin(), all.files.end(),
                                           wanted, isEarlier);
        if (file != all.files.end() && file->name == nameOrPath) {
            return *file;
        }
        found.problems = all.problems;
    }
    if (!found.files.empty()) {
        return found.files.front();
    }
    requireComplete(found);
    // What has such a name may have been put back a moment ago.
    const bool wasOne = isRescueName(fs::path(nameOrPath).filename().string());
    throw Failure{wasOne ? ExitCode::InputOutput : ExitCode::Usage,
                  "No saved events are named '" + nameOrPath + "'.",
                  "'ovmem rescue list' names those there are."};
}

Failure failure(const std::string& what, const std::string& why,
                const std::string& advice) {
    return {ExitCode::InputOutput, what + ": " + why + ".", advice};
}

}  // namespace

SavedFiles listSavedFiles() {
    SavedFiles saved;
    for (const fs::path& place : listRescuePlaces()) {
        std::error_code failed;
        fs::directory_iterator entry(place, failed);
        for (; !failed && entry != fs::directory_iterator();
             entry.increment(failed)) {
            addIfSaved(saved, entry->path());
        }
        if (failed && !isMissing(failed.value())) {
            addProblem(saved, place, std::strerror(failed.value()));
        }
    }
    std::stable_sort(saved.files.begin(), saved.files.end(), isEarlier);
    return saved;
}

void requireComplete(const SavedFiles& saved) {
    if (!saved.problems.empty()) {
        throw Failure{
            ExitCode::InputOutput,
            "Cannot look for saved events everywhere: " + saved.problems + ".",
            "There may be more than are listed. Remove the cause, "
            "then try again."};
    }
}

SavedEvents::SavedEvents(const std::string& nameOrPath, const SavedFiles& all)
    : file(find(nameOrPath, all)),
      opened(open(file.path.c_str(),
                  O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)) {
    struct stat status = {};
    const bool readable =
        opened.get() >= 0 && fstat(opened.get(), &status) == 0;
    if (!readable || !isOwn(file.path, status)) {
        throw failure("Cannot read " + shellWord(file.path),
                      readable ? "It is no longer a file of your own"
                               : std::strerror(errno),
                      "The file is as it was.");
    }
    number = {status.st_dev, status.st_ino};
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
            throw failure("Cannot read " + shellWord(file.path),
                          std::strerror(errno), "The file is as it was.");
        }
    }
}

void SavedEvents::claim() const {
    const bool locked = flock(opened.get(), LOCK_EX | LOCK_NB) == 0;
    if (!locked && errno != EWOULDBLOCK) {
        throw failure("Cannot lock " + shellWord(file.path),
                      std::strerror(errno),
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

void SavedEvents::requireRemovable() const {
    const std::string folder = fs::path(file.path).parent_path().string();
    if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
        throw failure("Cannot remove files from " + shellWord(folder),
                      std::strerror(errno),
                      "Nothing was sent: the events of a file that stays may "
                      "be put again. Allow writing to the folder. Or write the "
                      "events with 'ovmem rescue show' and put them with "
                      "'ovmem put'.");
    }
}

int SavedEvents::remove() const {
    return unlink(file.path.c_str()) == 0 ? 0 : errno;
}

}  // namespace ovmem::cli
