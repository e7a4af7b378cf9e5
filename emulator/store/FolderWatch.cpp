#include "emulator/store/FolderWatch.h"

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr long nanosecondsOfAMillisecond = 1000000;
constexpr long coarseness = 100;  // milliseconds, much more than any tick

bool isLongPast(const std::timespec& change) {
    std::timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const long milliseconds =
        (now.tv_sec - change.tv_sec) * 1000 +
        (now.tv_nsec - change.tv_nsec) / nanosecondsOfAMillisecond;
    return milliseconds > coarseness;
}

}  // namespace

FolderWatch::FolderWatch(std::string where)
    : path(std::move(where)),
      folder(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}

FolderWatch::~FolderWatch() {
    if (folder >= 0) {
        ::close(folder);
    }
}

bool FolderWatch::isUnchanged() noexcept {
    struct stat status {};
    if (folder < 0 || ::stat(path.c_str(), &status) != 0) {
        settled = false;
        return false;
    }
    seen = {status.st_dev, status.st_ino, status.st_mtim};
    return settled && isSame(seen, trusted);
}

void FolderWatch::accept() noexcept {
    trusted = seen;
    settled = folder >= 0 && isLongPast(seen.change);
}

bool FolderWatch::isSame(const State& one, const State& other) noexcept {
    return one.device == other.device && one.number == other.number &&
           one.change.tv_sec == other.change.tv_sec &&
           one.change.tv_nsec == other.change.tv_nsec;
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
