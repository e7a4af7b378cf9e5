#ifndef EMULATOR_STORE_SQLITEFAILURE_H
#define EMULATOR_STORE_SQLITEFAILURE_H

#include <string>

namespace SQLite {
class Exception;
}

namespace Orvane::Net::OvModelEventManager::Emulator {

// Throws what a failure of SQLite means for the store in the file `path`:
// std::bad_alloc, or a StoreError that says what happened and what to do.
//
// `systemError` is the errno of SQLite's last system call that failed, 0 if
// there is no connection to ask.
[[noreturn]] void throwSqliteFailure(const SQLite::Exception& error,
                                     const std::string& path, int systemError);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
