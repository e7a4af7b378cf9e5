#ifndef EMULATOR_OVMEMBINDING_LASTERROR_H
#define EMULATOR_OVMEMBINDING_LASTERROR_H

#include <string>

#include "emulator/OvMemBinding/HostBytes.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// What OvMem_GetLastError hands out on one thread: the text of the last call,
// if it failed.
class LastError {
public:
    // Forgets the text; what was handed out is no longer valid.
    void clear() noexcept;

    // Keeps a copy of `text`, or says that memory ran out.
    void set(const char* text) noexcept;

    // The text, null if there is none; valid until clear.
    //
    // With a heap the copy handed out lives there. Without one, as after a
    // failed start, it lives here.
    //
    // THROWS: std::bad_alloc.
    const char* handOut(const HostHeap* heap);

private:
    bool failed = false;
    bool outOfMemory = false;
    std::string kept;
    HostBytes handedOut;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
