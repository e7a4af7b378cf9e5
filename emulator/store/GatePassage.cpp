#include "emulator/store/GatePassage.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "emulator/store/LockHolder.h"
#include "emulator/store/NamedFile.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/SystemAdvice.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// After so long a waiter no longer counts on the one who is next.
constexpr auto patience = 100ms;

StoreError gateError(const std::string& path, int error) {
    return StoreError(
        "The gate file '" + path + "' of the event store cannot be locked (" +
        std::strerror(error) + "). " +
        adviceFor(error,
                  "Make its folder writable, or set OVMEM_STORE to a place "
                  "that is."));
}

StoreError timeoutError(const std::string& path) {
    return StoreError("The event store is in use: " +
                      describeLockHolder({path}) + " holds its gate '" + path +
                      "'. Let that process go on or end it, then repeat the "
                      "call.");
}

// The place of the next is a lock on the first byte. It belongs to the open
// file, as does the gate itself, which is a lock of another kind on the same
// file. Where the file system has no such locks there is no queue.
struct flock nextPlace(short type) {
    struct flock place {};
    place.l_type = type;
    place.l_whence = SEEK_SET;
    place.l_len = 1;
    return place;
}

bool somebodyIsNext(int file) {
    struct flock place = nextPlace(F_WRLCK);
    return ::fcntl(file, F_OFD_GETLK, &place) == 0 && place.l_type != F_UNLCK;
}

bool becomeNext(int file) {
    struct flock place = nextPlace(F_WRLCK);
    return ::fcntl(file, F_OFD_SETLK, &place) == 0 ||
           (errno != EAGAIN && errno != EACCES);
}

// Leaves the place of the next at its end, also if the wait was in vain: the
// file stays open.
class NextPlace {
public:
    explicit NextPlace(int gateFile) : file(gateFile) {}
    NextPlace(const NextPlace&) = delete;
    NextPlace& operator=(const NextPlace&) = delete;
    ~NextPlace() {
        struct flock place = nextPlace(F_UNLCK);
        ::fcntl(file, F_OFD_SETLK, &place);
    }

private:
    const int file;
};

// Looks at the gate, again and again, until it is through.
class Waiter {
public:
    Waiter(int gateFile, const std::string& gatePath, Deadline limit)
        : file(gateFile), path(gatePath), deadline(limit) {}

    void wait() {
        if (!somebodyIsNext(file) && passes()) {
            return;
        }
        while (!becomeNext(file)) {
            if (Clock::now() - start > patience && passes()) {
                return;
            }
            rest(queueRest());
        }
        const NextPlace place(file);
        for (int looks = 0; !passes(); ++looks) {
            // A passage may take a few microseconds, or many milliseconds.
            if (looks < 20) {
                ::sched_yield();
            } else {
                rest(std::min(50us * (looks - 19), 1000us));
            }
        }
    }

private:
    bool passes() {
        if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
            return true;
        }
        if (errno != EWOULDBLOCK && errno != EINTR) {
            throw gateError(path, errno);
        }
        return false;
    }

    void rest(std::chrono::microseconds duration) {
        if (Clock::now() >= deadline) {
            throw timeoutError(path);
        }
        std::this_thread::sleep_for(duration);
    }

    // Of different length each time, so that nobody is late for ever.
    std::chrono::microseconds queueRest() {
        random = random * 1664525U + 1013904223U;
        const unsigned most = Clock::now() - start < 10ms ? 250 : 2000;
        return 50us + std::chrono::microseconds((random >> 16U) % most);
    }

    const int file;
    const std::string& path;
    const Deadline deadline;
    const Clock::time_point start = Clock::now();
    unsigned random = static_cast<unsigned>(
        start.time_since_epoch().count() ^
        static_cast<Clock::rep>(std::hash<pid_t>()(::getpid()) << 8U));
};

bool hasAName(int file, const std::string& path) {
    struct stat status {};
    if (::fstat(file, &status) != 0) {
        throw gateError(path, errno);
    }
    return status.st_nlink > 0;
}

}  // namespace

Gate::Gate(std::string path, mode_t rights)
    : name(std::move(path)), mode(rights) {}

Gate::~Gate() {
    close();
}

bool Gate::hasItsName() const noexcept {
    return bearsName(file, name);
}

bool Gate::hasWaiters() const noexcept {
    return somebodyIsNext(file);
}

void Gate::open() {
    constexpr int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW;
    while (file < 0) {
        file = ::open(name.c_str(), flags);
        if (file < 0 && errno == ENOENT) {
            file = ::open(name.c_str(), flags | O_CREAT | O_EXCL, mode);
            if (file >= 0) {
                ::fchmod(file, mode);
            }
        }
        // Somebody else may have made it in between.
        if (file < 0 && errno != EEXIST) {
            throw gateError(name, errno);
        }
    }
}

void Gate::close() noexcept {
    if (file >= 0) {
        ::close(file);
        file = -1;
    }
}

// Somebody may have removed the file meanwhile; its lock is then worth nothing.
GatePassage::GatePassage(const std::string& path, Deadline deadline,
                         mode_t mode)
    : own(std::in_place, path, mode), gate(*own) {
    for (;;) {
        gate.open();
        Waiter(gate.file, path, deadline).wait();
        if (hasAName(gate.file, path)) {
            return;
        }
        gate.close();
    }
}

GatePassage::GatePassage(Gate& kept, Deadline deadline) : gate(kept) {
    gate.open();
    Waiter(gate.file, gate.path(), deadline).wait();
}

GatePassage::~GatePassage() {
    ::flock(gate.file, LOCK_UN);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
