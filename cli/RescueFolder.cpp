#include "cli/RescueFolder.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace ovmem::cli {

namespace fs = std::filesystem;

namespace {

void makeFolders(const fs::path& folder) {
    int result = mkdir(folder.c_str(), S_IRWXU);
    if (result != 0 && errno == ENOENT && folder.has_relative_path()) {
        makeFolders(folder.parent_path());
        result = mkdir(folder.c_str(), S_IRWXU);
    }
    if (result == 0) {
        chmod(folder.c_str(), S_IRWXU);  // the umask may have taken it
    }
}

}  // namespace

bool prepareRescueFolder(const fs::path& folder) {
    makeFolders(folder);  // a failure shows below
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
        return false;
    }
    const bool ownersAlone = (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    const bool sticky = (status.st_mode & S_ISVTX) != 0;
    return (status.st_uid == geteuid() || status.st_uid == 0) &&
           (ownersAlone || sticky);
}

}  // namespace ovmem::cli
