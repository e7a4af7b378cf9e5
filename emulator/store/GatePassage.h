#ifndef EMULATOR_STORE_GATEPASSAGE_H
#define EMULATOR_STORE_GATEPASSAGE_H

#include <string>

namespace Orvane::Net::OvModelEventManager::Emulator {

// Lets one holder at a time, among all processes and threads, through a gate
// that is a file: whoever writes to a store, or closes it, holds the passage
// meanwhile. The kernel queues those who wait, and opens the gate when a holder
// dies.
//
// The file is opened anew for each passage, so that a forked child does not
// keep the lock of a parent that was killed.
//
// THROWS: StoreError when the file cannot be opened or locked.
class GatePassage {
public:
    // Waits until the gate is free. Creates the file when there is none.
    explicit GatePassage(const std::string& path);
    GatePassage(const GatePassage&) = delete;
    GatePassage& operator=(const GatePassage&) = delete;
    ~GatePassage();

private:
    int file;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
