#include "emulator/store/StoreFiles.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "emulator/store/StoreError.h"
#include "emulator/store/SystemAdvice.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

namespace fs = std::filesystem;

constexpr const char* remembered = "A store was made here.\n";

class File {
public:
    explicit File(int descriptor) : file(descriptor) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (file >= 0) {
            ::close(file);
        }
    }
    int get() const { return file; }

private:
    const int file;
};

StoreError notMade(const std::string& what, const std::string& path,
                   int error) {
    return StoreError("The " + what + " '" + path +
                      "' of the event store cannot be made (" +
                      std::strerror(error) + "). " +
                      adviceFor(error,
                                "Make it yourself, or set OVMEM_STORE to "
                                "another place."));
}

// What cannot be looked at is not what is not there.
StoreError notSeen(const std::string& path, int error) {
    return StoreError("The file '" + path +
                      "' of the event store cannot be looked at (" +
                      std::strerror(error) + "). " +
                      adviceFor(error,
                                "Make its folder readable, or set OVMEM_STORE "
                                "to another place."));
}

StoreError refused(const std::string& path, const std::string& fault) {
    return StoreError("The file '" + path + "' " + fault +
                      ". Set OVMEM_STORE to the file itself, or to another "
                      "one.");
}

StoreFiles::Snapshot::File fileAt(const std::string& path) noexcept {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        return {};
    }
    return {status.st_dev, status.st_ino};
}

bool isEmptyFile(const std::string& path) noexcept {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_size == 0;
}

// False if there is nothing. A folder is left to SQLite's own words.
bool isThere(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        if (errno != ENOENT && errno != ENOTDIR) {
            throw notSeen(path, errno);
        }
        return false;
    }
    if (S_ISLNK(status.st_mode)) {
        throw refused(path, "of the event store is a symbolic link");
    }
    if (S_ISREG(status.st_mode) && status.st_nlink > 1) {
        throw refused(path, "of the event store has several names");
    }
    return true;
}

// So that a power cut does not take away what was made in `folder`. A file
// system that cannot sync a folder has no need to.
void syncNames(const fs::path& folder) {
    const File file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file.get() >= 0) {
        ::fsync(file.get());
    }
}

void makeFolders(const fs::path& folder, Access access) {
    std::error_code unknown;
    if (folder.empty() || fs::is_directory(folder, unknown)) {
        return;
    }
    makeFolders(folder.parent_path(), access);
    const mode_t mode = access == Access::group ? 02770 : 0700;
    if (::mkdir(folder.c_str(), mode) == 0) {
        ::chmod(folder.c_str(), mode);
        syncNames(folder.parent_path());
    } else if (errno != EEXIST) {
        throw notMade("folder", folder.string(), errno);
    }
}

void makeFile(const std::string& path, mode_t mode) {
    const File file(::open(path.c_str(),
                           O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                           mode));
    if (file.get() >= 0) {
        ::fchmod(file.get(), mode);
    } else if (errno != EEXIST) {
        throw notMade("file", path, errno);
    }
}

}  // namespace

StoreFiles::StoreFiles(const SqliteOptions& options)
    : path(options.path),
      logPath(path + "-wal"),
      indexPath(path + "-shm"),
      gatePath(path + ".gate"),
      access(options.access) {}

mode_t StoreFiles::fileMode() const {
    return fileRights(access);
}

bool StoreFiles::exist() const {
    if (isThere(path)) {
        isThere(log());
        isThere(index());
        isThere(gate());
        return !isEmptyFile(path) || isRemembered();
    }
    if (isRemembered()) {
        throw StoreError("The event store '" + path +
                         "' has vanished, and its gate '" + gate() +
                         "' is still there. Put the store back, or remove "
                         "the gate to begin with an empty one.");
    }
    return false;
}

void StoreFiles::requirePlace() const {
    const fs::path wanted = fs::path(path).parent_path();
    fs::path folder = wanted;
    struct stat status {};
    while (::stat(folder.c_str(), &status) != 0) {
        if (errno != ENOENT || !folder.has_relative_path()) {
            throw notMade("folder", wanted.string(), errno);
        }
        folder = folder.parent_path();
    }
    if (!S_ISDIR(status.st_mode)) {
        throw notMade("folder", wanted.string(), ENOTDIR);
    }
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        throw notMade("folder", wanted.string(), errno);
    }
}

void StoreFiles::makePlace() const {
    requirePlace();
    makeFolders(fs::path(path).parent_path(), access);
    makeFile(gate(), fileMode());
}

void StoreFiles::makeDatabase() const {
    makeFile(path, fileMode());
}

// SQLite's own order: an index without a log would mean that one was removed.
void StoreFiles::removeLogAndIndex() const noexcept {
    ::unlink(index().c_str());
    ::unlink(log().c_str());
}

void StoreFiles::rememberInGate() const {
    const File file(::open(gate().c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW));
    const std::size_t length = std::strlen(remembered);
    const ssize_t written =
        file.get() < 0 ? -1 : ::pwrite(file.get(), remembered, length, 0);
    if (written < 0) {
        throw notMade("gate", gate(), errno);
    }
    // A write that falls short sets no errno.
    if (static_cast<std::size_t>(written) < length) {
        throw notMade("gate", gate(), ENOSPC);
    }
}

bool StoreFiles::isRemembered() const noexcept {
    struct stat status {};
    return ::lstat(gate().c_str(), &status) == 0 && status.st_size > 0;
}

StoreFiles::Snapshot StoreFiles::snapshot() const noexcept {
    return {fileAt(path), fileAt(log()), fileAt(index())};
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
