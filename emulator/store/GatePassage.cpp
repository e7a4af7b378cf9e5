#include "emulator/store/GatePassage.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr mode_t fileMode = 0666;  // less the umask, as the store itself

StoreError gateError(const std::string& path, int error) {
    return StoreError("The gate file '" + path + "' of the event store cannot" +
                      " be locked (" + std::strerror(error) +
                      "). Make its folder writable, or set OVMEM_STORE to a "
                      "place that is.");
}

}  // namespace

GatePassage::GatePassage(const std::string& path)
    : file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, fileMode)) {
    if (file < 0) {
        throw gateError(path, errno);
    }
    while (::flock(file, LOCK_EX) != 0) {
        if (errno != EINTR) {
            const int error = errno;
            ::close(file);
            throw gateError(path, error);
        }
    }
}

GatePassage::~GatePassage() {
    ::flock(file, LOCK_UN);
    ::close(file);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
