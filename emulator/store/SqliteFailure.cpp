#include "emulator/store/SqliteFailure.h"

#include <cerrno>
#include <cstring>
#include <new>

#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include "emulator/store/LockHolder.h"
#include "emulator/store/StoreDamage.h"
#include "emulator/store/StoreError.h"
#include "emulator/store/SystemAdvice.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr const char* makeUsable =
    "Make the file and its folder readable and writable, or set OVMEM_STORE to "
    "another file.";

// Whether an error comes from a system call.
bool isOfSystem(int code) {
    return code == SQLITE_IOERR || code == SQLITE_CANTOPEN ||
           code == SQLITE_READONLY;
}

// SQLite does not always say, so the question is put again.
int errorOfOpening(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOCTTY);
    const int error = file < 0 ? errno : 0;
    if (file >= 0) {
        ::close(file);
    }
    return error;
}

}  // namespace

void throwSqliteFailure(const SQLite::Exception& error, const std::string& path,
                        int systemError) {
    const int code = error.getErrorCode();
    if (code == SQLITE_NOMEM) {
        throw std::bad_alloc();
    }
    if (const auto* opening = dynamic_cast<const SqliteOpenFailure*>(&error)) {
        systemError = opening->systemError;
    }
    if (code == SQLITE_CANTOPEN && systemError == 0) {
        systemError = errorOfOpening(path);
    }
    if (!isOfSystem(code)) {
        systemError = 0;
    }
    const std::string store = "The event store '" + path + "' ";
    std::string reason = " (" + std::string(error.what());
    if (systemError != 0) {
        reason += ": " + std::string(std::strerror(systemError));
    }
    reason += "). ";
    switch (code) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw StoreError(
                store +
                "is locked: " + describeLockHolder({path + "-shm", path}) +
                " holds its lock" + reason +
                "Let that process go on or end it, then repeat the call.");
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
        case SQLITE_CONSTRAINT:
            throw StoreError(store + "is damaged or not a store" + reason +
                             replaceStore +
                             " If the file is something else, set OVMEM_STORE "
                             "to another one.");
        case SQLITE_FULL:
            throw StoreError(store + "has no room left" + reason + freeSpace);
        default:
            throw StoreError(store + "cannot be used" + reason +
                             adviceFor(systemError, makeUsable));
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
