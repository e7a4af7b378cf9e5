#ifndef EMULATOR_STORE_SQLITEFAILURE_H
#define EMULATOR_STORE_SQLITEFAILURE_H

#include <string>

#include <SQLiteCpp/Exception.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

// A failure of SQLite while a file was being opened. The connection, which
// could be asked for the errno, is gone by the time somebody catches it.
class SqliteOpenFailure : public SQLite::Exception {
public:
    SqliteOpenFailure(const SQLite::Exception& error, int errorOfSystem)
        : SQLite::Exception(error), systemError(errorOfSystem) {}

    // The errno of SQLite's last system call that failed, 0 if unknown.
    const int systemError;
};

// Throws what a failure of SQLite means for the store in the file `path`:
// std::bad_alloc, or a StoreError that says what happened and what to do.
//
// `systemError` is the errno of SQLite's last system call that failed, 0 if
// unknown. A SqliteOpenFailure knows its own.
[[noreturn]] void throwSqliteFailure(const SQLite::Exception& error,
                                     const std::string& path, int systemError);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
