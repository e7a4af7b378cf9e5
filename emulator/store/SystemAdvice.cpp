#include "emulator/store/SystemAdvice.h"

#include <cerrno>

namespace Orvane::Net::OvModelEventManager::Emulator {

const char* adviceFor(int systemError, const char* otherwise) noexcept {
    switch (systemError) {
        case EIO:
            return "Repeat the call. If it fails again, check the disk.";
        case ENOSPC:
        case EDQUOT:
            return freeSpace;
        case EMFILE:
        case ENFILE:
            return "Close files or raise the limit of open files, then repeat "
                   "the call.";
        case ENOLCK:
            return "Set OVMEM_STORE to a file on a local file system, or free "
                   "locks of files, then repeat the call.";
        default:
            return otherwise;
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
