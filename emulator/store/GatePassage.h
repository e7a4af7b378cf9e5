#ifndef EMULATOR_STORE_GATEPASSAGE_H
#define EMULATOR_STORE_GATEPASSAGE_H

#include <chrono>
#include <optional>
#include <string>

#include <sys/types.h>

#include "emulator/store/ForkLock.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// A gate that is a file, kept open from one passage to the next.
//
// The file is opened by the first passage, and made if there is none, with the
// rights `mode` whatever the umask says. Whoever keeps a gate looks from time
// to time whether its name still stands for the same file (hasItsName): a lock
// on one that was removed or replaced keeps nobody out.
//
// A gate must not cross a fork: the child would have a share in its lock, and
// keep it when the parent is killed.
//
// Threads: one at a time.
class Gate {
public:
    static constexpr mode_t ownersOnly = 0600;

    // Opens nothing yet.
    explicit Gate(std::string path, mode_t mode = ownersOnly);
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;
    ~Gate();

    const std::string& path() const { return name; }

    // False before the first passage.
    bool hasItsName() const noexcept;

    // Whether somebody is next at the gate, for whom its holder should not take
    // longer than it must.
    bool hasWaiters() const noexcept;

private:
    friend class GatePassage;

    void open();
    void close() noexcept;

    const std::string name;
    const mode_t mode;
    int file = -1;
};

// Lets one holder at a time, among all processes and threads, through a gate
// that is a file: whoever writes to a store, or tidies it up, holds the passage
// meanwhile. The kernel opens the gate when a holder dies.
//
// Those who find the gate closed queue: one of them, the next, looks at the
// gate again and again, the others at the place of the next. So whoever comes
// out and goes in again at once does not overtake them. A process that is
// stopped in that place holds the others up for a moment only.
//
// THROWS: StoreError when the file cannot be opened or locked, and when the
// deadline is over; the text then names the process that holds the gate.
class GatePassage {
public:
    static constexpr std::chrono::seconds usualLimit{10};

    // Through a gate that is opened for this passage alone.
    explicit GatePassage(const std::string& path,
                         Deadline deadline = std::chrono::steady_clock::now() +
                                             usualLimit,
                         mode_t mode = Gate::ownersOnly);

    // Through a gate that is kept, and must outlive the passage.
    GatePassage(Gate& kept, Deadline deadline);

    GatePassage(const GatePassage&) = delete;
    GatePassage& operator=(const GatePassage&) = delete;
    ~GatePassage();

    // The gate file, for what is kept in it.
    int descriptor() const { return gate.file; }

private:
    std::optional<Gate> own;
    Gate& gate;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
