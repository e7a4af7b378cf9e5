#ifndef EMULATOR_STORE_GATEPASSAGE_H
#define EMULATOR_STORE_GATEPASSAGE_H

#include <chrono>
#include <string>

#include "emulator/store/ForkLock.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// Lets one holder at a time, among all processes and threads, through a gate
// that is a file: whoever writes to a store, or tidies it up, holds the passage
// meanwhile. The kernel opens the gate when a holder dies.
//
// Those who find the gate closed queue: one of them, the next, looks at the
// gate again and again, the others at the place of the next. So whoever comes
// out and goes in again at once does not overtake them. A process that is
// stopped in that place holds the others up for a moment only.
//
// The file is opened for each passage, so that a forked child does not keep the
// lock of a parent that was killed.
//
// THROWS: StoreError when the file cannot be opened or locked, and when the
// deadline is over; the text then names the process that holds the gate.
class GatePassage {
public:
    static constexpr std::chrono::seconds usualLimit{10};

    // Creates the file when there is none.
    explicit GatePassage(const std::string& path,
                         Deadline deadline = std::chrono::steady_clock::now() +
                                             usualLimit);
    GatePassage(const GatePassage&) = delete;
    GatePassage& operator=(const GatePassage&) = delete;
    ~GatePassage();

private:
    int file = -1;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
