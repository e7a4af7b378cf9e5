#include "emulator/store/SqliteFailure.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "emulator/store/StoreError.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

const std::string path = "/nowhere/events.db";

std::string textOf(int code, int systemError) {
    try {
        throwSqliteFailure(SQLite::Exception("reason", code), path,
                           systemError);
    } catch (const StoreError& error) {
        return error.what();
    }
    return "no StoreError";
}

std::string cannotBeUsed(const std::string& rest) {
    return "The event store '" + path + "' cannot be used (reason" + rest;
}

}  // namespace

TEST(SqliteFailure, NamesTheErrorOfTheSystemAndTheAdviceForIt) {
    EXPECT_EQ(textOf(SQLITE_IOERR, EIO),
              cannotBeUsed(": Input/output error). Repeat the call. If it "
                           "fails again, check the disk."));
    for (const int error : {ENOSPC, EDQUOT}) {
        EXPECT_EQ(textOf(SQLITE_IOERR, error),
                  cannotBeUsed(": " + std::string(std::strerror(error)) +
                               "). Free space on its disk, then repeat the "
                               "call."));
    }
    for (const int error : {EMFILE, ENFILE}) {
        EXPECT_EQ(textOf(SQLITE_CANTOPEN, error),
                  cannotBeUsed(": " + std::string(std::strerror(error)) +
                               "). Close files or raise the limit of open "
                               "files, then repeat the call."));
    }
    EXPECT_EQ(textOf(SQLITE_IOERR, ENOLCK),
              cannotBeUsed(": No locks available). Set OVMEM_STORE to a file "
                           "on a local file system, or free locks of files, "
                           "then repeat the call."));
    EXPECT_EQ(textOf(SQLITE_READONLY, EROFS),
              cannotBeUsed(": Read-only file system). Make the file and its "
                           "folder readable and writable, or set OVMEM_STORE "
                           "to another file."));
}

TEST(SqliteFailure, NamesNoErrorOfTheSystemThatIsNotItsCause) {
    EXPECT_EQ(textOf(SQLITE_ERROR, EMFILE),
              cannotBeUsed("). Make the file and its folder readable and "
                           "writable, or set OVMEM_STORE to another file."));
    EXPECT_EQ(textOf(SQLITE_FULL, EIO),
              "The event store '" + path +
                  "' has no room left (reason). Free space on its disk, then "
                  "repeat the call.");
}

TEST(SqliteFailure, AsksWhyAFileCannotBeOpenedWhereSqliteDoesNotSay) {
    EXPECT_EQ(textOf(SQLITE_CANTOPEN, 0),
              cannotBeUsed(": No such file or directory). Make the file and "
                           "its folder readable and writable, or set "
                           "OVMEM_STORE to another file."));
}

TEST(SqliteFailure, LackOfMemoryIsNoFailureOfTheStore) {
    EXPECT_THROW(
        throwSqliteFailure(SQLite::Exception("", SQLITE_NOMEM), path, EIO),
        std::bad_alloc);
}
