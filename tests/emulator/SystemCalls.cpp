#include "tests/emulator/SystemCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace OvMemTest {

namespace {

thread_local SystemCallWatcher* watcher = nullptr;

using Kind = SystemCall::Kind;

std::string pathOf(int file) {
    std::array<char, 4096> name;
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = ::readlink(link.c_str(), name.data(), name.size());
    return length < 0
               ? std::string()
               : std::string(name.data(), static_cast<std::size_t>(length));
}

// `function` is given how many bytes it may write.
template <typename Function>
long watched(SystemCall call, Function function) {
    SystemCallWatcher* const present = std::exchange(watcher, nullptr);
    if (!present) {
        return function(SIZE_MAX);
    }
    const int former = errno;
    if (call.file >= 0) {
        call.path = pathOf(call.file);
    }
    const SystemCallWatcher::Verdict verdict = present->before(call);
    long result = -1;
    int error = verdict.error;
    if (error == 0) {
        errno = former;
        result = function(verdict.most);
        error = errno;
        present->after(call, result);
    }
    errno = error;
    watcher = present;
    return result;
}

SystemCall onFile(Kind kind, int file) {
    SystemCall call{kind, "", file};
    return call;
}

SystemCall onPath(Kind kind, const char* path) {
    return SystemCall{kind, watcher ? path : ""};
}

int watchedOpen(const char* path, int flags, int mode) {
    SystemCall call = onPath(Kind::open, path);
    call.flags = flags;
    return static_cast<int>(watched(call, [&](std::size_t) {
        return ::syscall(SYS_openat, AT_FDCWD, path, flags, mode);
    }));
}

// A lock that is given back cannot fail.
int watchedFcntl(int file, int command, void* argument) {
    const auto call = [&](std::size_t) {
        return ::syscall(SYS_fcntl, file, command, argument);
    };
    const bool locks =
        command == F_SETLK || command == F_SETLKW || command == F_OFD_SETLK;
    const bool takes =
        locks && static_cast<const struct flock*>(argument)->l_type != F_UNLCK;
    return static_cast<int>(takes ? watched(onFile(Kind::lock, file), call)
                                  : call(SIZE_MAX));
}

ssize_t watchedRead(int file, void* bytes, size_t count, off_t offset) {
    return watched(onFile(Kind::read, file), [&](std::size_t) {
        return ::syscall(SYS_pread64, file, bytes, count, offset);
    });
}

ssize_t watchedWrite(int file, const void* bytes, size_t count, off_t offset) {
    SystemCall call = onFile(Kind::write, file);
    call.bytes = bytes;
    call.count = count;
    call.offset = offset;
    return watched(call, [&](std::size_t most) {
        return ::syscall(SYS_pwrite64, file, bytes, std::min(count, most),
                         offset);
    });
}

int watchedCut(int file, off_t length) {
    SystemCall call = onFile(Kind::cut, file);
    call.offset = length;
    return static_cast<int>(watched(call, [&](std::size_t) {
        return ::syscall(SYS_ftruncate, file, length);
    }));
}

int watchedSync(int file) {
    return static_cast<int>(
        watched(onFile(Kind::sync, file), [](std::size_t) { return 0L; }));
}

int watchedStat(const char* path, void* status, int flags) {
    return static_cast<int>(watched(onPath(Kind::ask, path), [&](std::size_t) {
        return ::syscall(SYS_newfstatat, AT_FDCWD, path, status, flags);
    }));
}

int watchedFstat(int file, void* status) {
    return static_cast<int>(watched(onFile(Kind::ask, file), [&](std::size_t) {
        return ::syscall(SYS_fstat, file, status);
    }));
}

// -1 is MAP_FAILED.
void* watchedMap(void* where, size_t size, int protection, int flags, int file,
                 off_t offset) {
    const auto call = [&](std::size_t) {
        return ::syscall(SYS_mmap, where, size, protection, flags, file,
                         offset);
    };
    return reinterpret_cast<void*>(
        file >= 0 ? watched(onFile(Kind::ask, file), call) : call(SIZE_MAX));
}

}  // namespace

bool SystemCallWatcher::seesCalls() {
    return true;
}

SystemCallWatcher::SystemCallWatcher() {
    watcher = this;
}

SystemCallWatcher::~SystemCallWatcher() {
    watcher = nullptr;
}

void SystemCallWatcher::after(const SystemCall&, long) {}

}  // namespace OvMemTest

#define INTERPOSED extern "C" __attribute__((visibility("default")))

using namespace OvMemTest;

INTERPOSED int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const int mode = (flags & O_CREAT) != 0 ? va_arg(arguments, int) : 0;
    va_end(arguments);
    return watchedOpen(path, flags, mode);
}

INTERPOSED int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const int mode = (flags & O_CREAT) != 0 ? va_arg(arguments, int) : 0;
    va_end(arguments);
    return watchedOpen(path, flags, mode);
}

INTERPOSED int fcntl(int file, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return watchedFcntl(file, command, argument);
}

INTERPOSED int fcntl64(int file, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return watchedFcntl(file, command, argument);
}

INTERPOSED int flock(int file, int operation) noexcept {
    const auto call = [&](std::size_t) {
        return ::syscall(SYS_flock, file, operation);
    };
    return static_cast<int>((operation & LOCK_UN) != 0
                                ? call(SIZE_MAX)
                                : watched(onFile(Kind::lock, file), call));
}

INTERPOSED ssize_t pread(int file, void* bytes, size_t count, off_t offset) {
    return watchedRead(file, bytes, count, offset);
}

INTERPOSED ssize_t pread64(int file, void* bytes, size_t count, off_t offset) {
    return watchedRead(file, bytes, count, offset);
}

INTERPOSED ssize_t pwrite(int file, const void* bytes, size_t count,
                          off_t offset) {
    return watchedWrite(file, bytes, count, offset);
}

INTERPOSED ssize_t pwrite64(int file, const void* bytes, size_t count,
                            off_t offset) {
    return watchedWrite(file, bytes, count, offset);
}

INTERPOSED int ftruncate(int file, off_t length) noexcept {
    return watchedCut(file, length);
}

INTERPOSED int ftruncate64(int file, off_t length) noexcept {
    return watchedCut(file, length);
}

INTERPOSED int fsync(int file) {
    return watchedSync(file);
}

INTERPOSED int fdatasync(int file) {
    return watchedSync(file);
}

INTERPOSED int stat(const char* path, struct stat* status) noexcept {
    return watchedStat(path, status, 0);
}

INTERPOSED int stat64(const char* path, struct stat64* status) noexcept {
    return watchedStat(path, status, 0);
}

INTERPOSED int lstat(const char* path, struct stat* status) noexcept {
    return watchedStat(path, status, AT_SYMLINK_NOFOLLOW);
}

INTERPOSED int lstat64(const char* path, struct stat64* status) noexcept {
    return watchedStat(path, status, AT_SYMLINK_NOFOLLOW);
}

INTERPOSED int fstat(int file, struct stat* status) noexcept {
    return watchedFstat(file, status);
}

INTERPOSED int fstat64(int file, struct stat64* status) noexcept {
    return watchedFstat(file, status);
}

INTERPOSED void* mmap(void* where, size_t size, int protection, int flags,
                      int file, off_t offset) noexcept {
    return watchedMap(where, size, protection, flags, file, offset);
}

INTERPOSED void* mmap64(void* where, size_t size, int protection, int flags,
                        int file, off_t offset) noexcept {
    return watchedMap(where, size, protection, flags, file, offset);
}

INTERPOSED int mkdir(const char* path, mode_t mode) noexcept {
    return static_cast<int>(watched(onPath(Kind::make, path), [&](std::size_t) {
        return ::syscall(SYS_mkdirat, AT_FDCWD, path, mode);
    }));
}

INTERPOSED int unlink(const char* path) noexcept {
    return static_cast<int>(
        watched(onPath(Kind::remove, path), [&](std::size_t) {
            return ::syscall(SYS_unlinkat, AT_FDCWD, path, 0);
        }));
}
