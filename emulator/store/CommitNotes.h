#ifndef EMULATOR_STORE_COMMITNOTES_H
#define EMULATOR_STORE_COMMITNOTES_H

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "emulator/store/EventStore.h"
#include "emulator/store/SqliteOptions.h"
#include "emulator/store/StoreRows.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// Notes in the gate file of a store, by which it is noticed that commits are
// gone: a log that was cut or altered looks to SQLite like a log that was
// written no further.
//
// Whoever commits notes how far a server or a client has come, before it leaves
// the gate. So a note is never ahead of the store, unless something was lost.
// Notes cost no sync: after a power failure they may be older than the store,
// and then do not tell everything. Where commits themselves are not synced, a
// note is of no more use after the next start of the machine.
//
// There is room for a thousand notes; with more servers and clients than some
// hundred, one may take the place of another.
//
// Threads: one at a time.
class CommitNotes {
public:
    CommitNotes(const std::string& gatePath, Synchronous commits)
        : gate(gatePath), synchronous(commits) {}

    struct Noted {
        std::optional<std::int64_t> server;
        std::optional<std::int64_t> client;
    };

    // What is noted of a client and its server; nothing any more once they were
    // accepted, since nothing is lost while a store is open. To be read before
    // what it is compared with.
    Noted of(const Identity& who) const;

    // Nothing of them was lost.
    void accept(const Identity& who) noexcept;

    // How far a server has come.
    static std::int64_t progress(const ServerRow& server) {
        return server.next + server.epoch;
    }

    // `file` is the gate file, open and locked. What fails is not noted.
    void noteServer(int file, const std::string& server,
                    const ServerRow& row) const noexcept;
    void noteClient(int file, const Identity& who,
                    std::int64_t cursor) const noexcept;

private:
    const std::string gate;
    const Synchronous synchronous;
    std::set<std::int64_t> accepted;  // keys of clients
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
