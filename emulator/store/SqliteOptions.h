#ifndef EMULATOR_STORE_SQLITEOPTIONS_H
#define EMULATOR_STORE_SQLITEOPTIONS_H

#include <string>

namespace Orvane::Net::OvModelEventManager::Emulator {

// When a commit counts as done.
enum class Synchronous {
    normal,  // survives the end of a process, not that of the machine
    full     // survives both
};

struct SqliteOptions {
    std::string path;
    Synchronous synchronous = Synchronous::full;
    int busyTimeoutMilliseconds = 10000;  // then the store timed out
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
