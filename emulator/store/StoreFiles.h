#ifndef EMULATOR_STORE_STOREFILES_H
#define EMULATOR_STORE_STOREFILES_H

#include <string>

#include <sys/types.h>

#include "emulator/store/SqliteOptions.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// The files of a store, as the file system has them: PATH, its log PATH-wal,
// the index of the log PATH-shm, and its gate PATH.gate.
//
// Rights are given whatever the umask says, to what is made and to nothing
// else. No link stands for a file of a store, neither a symbolic one nor a
// second name.
//
// THROWS: StoreError.
class StoreFiles {
public:
    // Which files stand behind the names at one moment.
    struct Snapshot {
        struct File {
            dev_t device = 0;
            ino_t number = 0;  // 0: there is none
            bool operator==(const File&) const = default;
        };
        File database;
        File log;
        File index;
        bool operator==(const Snapshot&) const = default;
    };

    explicit StoreFiles(const SqliteOptions& options);

    const std::string& database() const { return path; }
    const std::string& log() const { return logPath; }
    const std::string& index() const { return indexPath; }
    const std::string& gate() const { return gatePath; }

    // The rights of a file that is made.
    mode_t fileMode() const;

    // False if there is no store: neither file nor memory of one, or an empty
    // file that was none before. Refuses a file that cannot be one, and a store
    // that was there once and has vanished.
    bool exist() const;

    // Refuses a place where no store could be made.
    void requirePlace() const;

    // The folders, and the gate.
    void makePlace() const;

    // An empty file for the database, unless it is there. Inside the gate.
    void makeDatabase() const;

    // A log that was not written back is lost. Inside the gate.
    void removeLogAndIndex() const noexcept;

    // From now on the store cannot vanish unnoticed. Inside the gate.
    void rememberInGate() const;
    bool isRemembered() const noexcept;

    Snapshot snapshot() const noexcept;

private:
    const std::string path;
    const std::string logPath;
    const std::string indexPath;
    const std::string gatePath;
    const Access access;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
