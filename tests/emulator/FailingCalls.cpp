#include "tests/emulator/FailingCalls.h"

#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace OvMemTest {

namespace {

FailingCalls::Plan current;
std::uint64_t callCount = 0;
std::uint64_t failedCount = 0;

enum Kind { opening, locking, reading, writing, asking };

bool canFail(Kind kind) {
    switch (current.error) {
        case EMFILE:
            return kind == opening;
        case ENOLCK:
            return kind == locking;
        case ENOSPC:
        case EDQUOT:
            return kind == writing;
        default:
            return kind != locking;
    }
}

bool fails(Kind kind) {
    if (!canFail(kind)) {
        return false;
    }
    ++callCount;
    const bool failing = callCount == current.failAt ||
                         (current.andAllAfter && callCount > current.failAt);
    if (failing) {
        ++failedCount;
        errno = current.error;
    }
    return failing;
}

int failingOpen(const char* path, int flags, int mode) {
    return fails(opening) ? -1 : ::open(path, flags, mode);
}

// SQLite hands over a lock and nothing else. Giving one back cannot fail.
int failingFcntl(int file, int command, void* argument) {
    const bool gives = command == F_SETLK &&
                       static_cast<struct flock*>(argument)->l_type == F_UNLCK;
    return !gives && fails(locking) ? -1 : ::fcntl(file, command, argument);
}

ssize_t failingRead(int file, void* bytes, size_t count, off_t offset) {
    return fails(reading) ? -1 : ::pread(file, bytes, count, offset);
}

ssize_t failingWrite(int file, const void* bytes, size_t count, off_t offset) {
    return fails(writing) ? -1 : ::pwrite(file, bytes, count, offset);
}

int failingTruncate(int file, off_t size) {
    return fails(writing) ? -1 : ::ftruncate(file, size);
}

int failingStat(int file, struct stat* status) {
    return fails(asking) ? -1 : ::fstat(file, status);
}

void* failingMap(void* where, size_t size, int protection, int flags, int file,
                 off_t offset) {
    return fails(asking) ? MAP_FAILED
                         : ::mmap(where, size, protection, flags, file, offset);
}

template <typename Function>
sqlite3_syscall_ptr call(Function* function) {
    return reinterpret_cast<sqlite3_syscall_ptr>(function);
}

}  // namespace

FailingCalls::FailingCalls(Plan plan) {
    current = plan;
    callCount = 0;
    failedCount = 0;
    const std::array<std::pair<const char*, sqlite3_syscall_ptr>, 9> calls{{
        {"open", call(&failingOpen)},
        {"fcntl", call(&failingFcntl)},
        {"pread", call(&failingRead)},
        {"pread64", call(&failingRead)},
        {"pwrite", call(&failingWrite)},
        {"pwrite64", call(&failingWrite)},
        {"ftruncate", call(&failingTruncate)},
        {"fstat", call(&failingStat)},
        {"mmap", call(&failingMap)},
    }};
    sqlite3_vfs* files = ::sqlite3_vfs_find(nullptr);
    for (const auto& [name, function] : calls) {
        files->xSetSystemCall(files, name, function);
    }
}

FailingCalls::~FailingCalls() {
    sqlite3_vfs* files = ::sqlite3_vfs_find(nullptr);
    files->xSetSystemCall(files, nullptr, nullptr);
}

std::uint64_t FailingCalls::failed() {
    return failedCount;
}

}  // namespace OvMemTest
