#include "emulator/store/LeaseFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "emulator/store/LockHolder.h"
#include "emulator/store/NamedFile.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/SystemAdvice.h"
#include "emulator/store/TextDigest.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto longestRest = 2ms;
constexpr int mostDenials = 20;
constexpr std::time_t longestLimit = 24 * 60 * 60;

StoreError leaseError(const std::string& path, int error) {
    return StoreError("The lease '" + path +
                      "' of the event store cannot be taken (" +
                      std::strerror(error) + "). " +
                      adviceFor(error,
                                "Make its folder writable, or set OVMEM_STORE "
                                "to a place that is."));
}

StoreError foreignFile(const std::string& path, const char* what) {
    return StoreError("The lease '" + path + "' of the event store is " + what +
                      ". Remove it, then repeat the call.");
}

StoreError timeoutError(const std::string& path) {
    return StoreError("Another getter has the events of this client: " +
                      describeLockHolder({path}) + " holds the lease '" + path +
                      "'. " + leaseAdvice);
}

// The right to say what becomes of the name of a file: a lock of its first
// byte, of another kind than the lease itself. Everybody who removes the name,
// or makes the lease young, has it meanwhile, and nobody for long.
class NameRight {
public:
    explicit NameRight(int leaseFile) : file(leaseFile), had(set(F_WRLCK)) {}
    NameRight(const NameRight&) = delete;
    NameRight& operator=(const NameRight&) = delete;
    ~NameRight() {
        if (had) {
            set(F_UNLCK);
        }
    }

    bool isHad() const { return had; }

private:
    bool set(short type) const noexcept {
        struct flock byte {};
        byte.l_type = type;
        byte.l_whence = SEEK_SET;
        byte.l_len = 1;
        return ::fcntl(file, F_OFD_SETLK, &byte) == 0;
    }

    const int file;
    const bool had;
};

}  // namespace

std::string LeaseFile::pathOf(const std::string& database,
                              const Identity& caller) {
    const TextDigest digest(std::to_string(caller.serverId.size()) + ":" +
                            caller.serverId + caller.clientId);
    std::array<char, 17> name{};
    std::snprintf(name.data(), name.size(), "%016llx",
                  static_cast<unsigned long long>(digest.words[0]));
    return database + "-lease-" + name.data();
}

LeaseFile::LeaseFile(const SqliteOptions& options, const Identity& caller,
                     Deadline deadline, const void* store)
    : path(pathOf(options.path, caller)),
      mode(fileRights(options.access)),
      limit(options.lease) {
    OpenLeases& leases = OpenLeases::instance();
    {
        const auto lock = leases.lock();
        leases.add(*this, store);
    }
    try {
        Clock::duration rest = 0ms;
        for (;;) {
            const Attempt result = attempt();
            if (result == Attempt::taken) {
                return;
            }
            if (Clock::now() >= deadline) {
                throw file < 0 && denials > 0 ? leaseError(path, EACCES)
                                              : timeoutError(path);
            }
            if (result == Attempt::busy) {
                rest = std::min<Clock::duration>(rest + 50us, longestRest);
                std::this_thread::sleep_for(rest);
            }
        }
    } catch (...) {
        leases.remove(*this);
        throw;
    }
}

LeaseFile::~LeaseFile() {
    OpenLeases::instance().remove(*this);
}

// The lock of OpenLeases is held for a look, and never while it waits.
LeaseFile::Attempt LeaseFile::attempt() {
    const auto lock = OpenLeases::instance().lock();
    if (file < 0) {
        const Attempt opened = open();
        if (opened != Attempt::taken) {
            return opened;
        }
        requireOwnFile();
    }
    if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
        return lockNamed();
    }
    if (errno == EINTR) {
        return Attempt::again;
    }
    if (errno != EWOULDBLOCK) {
        throw leaseError(path, errno);
    }
    return isExpired() ? removeExpired() : Attempt::busy;
}

LeaseFile::Attempt LeaseFile::open() {
    constexpr int flags =
        O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY | O_NONBLOCK;
    file = ::open(path.c_str(), flags);
    if (file < 0 && errno == ENOENT) {
        file = ::open(path.c_str(), flags | O_CREAT | O_EXCL, mode);
        if (file >= 0) {
            ::fchmod(file, mode);  // whatever the umask
        } else if (errno == EEXIST) {
            return Attempt::again;
        }
    }
    if (file >= 0) {
        return Attempt::taken;
    }
    if (errno == ELOOP) {
        throw foreignFile(path, "a symbolic link");
    }
    // Somebody has just made it, and not yet given it its rights.
    if (errno == EACCES && ++denials < mostDenials) {
        return Attempt::busy;
    }
    throw leaseError(path, errno);
}

// What lies there from others is neither locked nor removed.
void LeaseFile::requireOwnFile() const {
    struct stat status {};
    if (::fstat(file, &status) != 0) {
        throw leaseError(path, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throw foreignFile(path, "no regular file");
    }
    if (status.st_nlink > 1) {
        throw foreignFile(path, "a file with several names");
    }
}

// A file that lost its name while it was opened, or locked, is worth nothing.
LeaseFile::Attempt LeaseFile::lockNamed() {
    {
        const NameRight right(file);
        if (!right.isHad()) {
            return Attempt::busy;
        }
        if (bearsName(file, path)) {
            if (::futimens(file, nullptr) != 0) {
                throw leaseError(path, errno);
            }
            held = true;
            return Attempt::taken;
        }
    }
    close();
    return Attempt::again;
}

LeaseFile::Attempt LeaseFile::removeExpired() {
    {
        const NameRight right(file);
        if (!right.isHad()) {
            return Attempt::busy;
        }
        if (bearsName(file, path) && isExpired() &&
            ::unlink(path.c_str()) != 0) {
            throw leaseError(path, errno);
        }
    }
    close();
    return Attempt::again;
}

// An age below zero is that of a clock that was set back.
bool LeaseFile::isExpired() const noexcept {
    struct stat status {};
    std::timespec now{};
    if (::fstat(file, &status) != 0 ||
        ::clock_gettime(CLOCK_REALTIME, &now) != 0) {
        return false;
    }
    const std::time_t seconds = now.tv_sec - status.st_mtim.tv_sec;
    if (seconds > longestLimit || seconds < -longestLimit) {
        return true;
    }
    const auto age =
        std::chrono::seconds(seconds) +
        std::chrono::nanoseconds(now.tv_nsec - status.st_mtim.tv_nsec);
    return age > limit || age < -limit;
}

void LeaseFile::close() noexcept {
    ::close(file);
    file = -1;
}

// Of a file that was only waited for, the name stays.
void LeaseFile::end() noexcept {
    if (file < 0) {
        return;
    }
    if (held) {
        const NameRight right(file);
        if (right.isHad() && bearsName(file, path)) {
            ::unlink(path.c_str());
        }
    }
    close();
}

void LeaseFile::closeCopy() noexcept {
    if (file >= 0) {
        close();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
