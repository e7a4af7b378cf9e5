#ifndef EMULATOR_STORE_SQLITEOPTIONS_H
#define EMULATOR_STORE_SQLITEOPTIONS_H

#include <chrono>
#include <cstddef>
#include <string>

#include <sys/types.h>

#include "emulator/store/EventStore.h"
#include "emulator/store/Lease.h"
#include "emulator/store/QueueLimits.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// When a commit counts as done.
enum class Synchronous {
    normal,  // survives the end of a process, not that of the machine
    full     // survives both
};

// Who may use a store that is made.
enum class Access {
    owner,  // files 0600, folders 0700
    group   // files 0660, folders 02770: a new file is of the folder's group
};

// Of the files of a store.
constexpr mode_t fileRights(Access access) {
    return access == Access::group ? 0660 : 0600;
}

struct SqliteOptions {
    std::string path;
    Synchronous synchronous = Synchronous::full;
    int busyTimeoutMilliseconds = 10000;  // then the store timed out
    Access access = Access::owner;
    std::size_t portion = portionBytes;  // of one get
    bool dedupe = false;                 // of puts that bear a correlation
    std::chrono::milliseconds lease = LeaseTerms().limit;  // of a getter
    QueueLimits limits{};
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
