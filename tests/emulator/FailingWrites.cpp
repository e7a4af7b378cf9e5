#include "tests/emulator/FailingWrites.h"

#include <cerrno>
#include <filesystem>

#include <sqlite3.h>
#include <unistd.h>

namespace OvMemTest {

namespace {

int errorOfWrites;
std::string failingFile;
long firstFailing;

bool isFailing(int file) {
    std::error_code gone;
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    return std::filesystem::read_symlink(link, gone) == failingFile;
}

ssize_t write(int file, const void* bytes, size_t count, off_t offset) {
    if (offset + static_cast<off_t>(count) > firstFailing && isFailing(file)) {
        errno = errorOfWrites;
        return -1;
    }
    return ::pwrite(file, bytes, count, offset);
}

void setWrite(sqlite3_syscall_ptr function) {
    sqlite3_vfs* files = ::sqlite3_vfs_find(nullptr);
    for (const char* name : {"pwrite", "pwrite64"}) {
        files->xSetSystemCall(files, name, function);
    }
}

}  // namespace

FailingWrites::FailingWrites(int error, const std::string& path, long room) {
    errorOfWrites = error;
    failingFile = path;
    firstFailing = room;
    setWrite(reinterpret_cast<sqlite3_syscall_ptr>(&write));
}

FailingWrites::~FailingWrites() {
    setWrite(nullptr);
}

}  // namespace OvMemTest
