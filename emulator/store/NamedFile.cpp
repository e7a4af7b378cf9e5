#include "emulator/store/NamedFile.h"

#include <sys/stat.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

bool bearsName(int file, const std::string& path) noexcept {
    struct stat held {};
    struct stat named {};
    return ::fstat(file, &held) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
