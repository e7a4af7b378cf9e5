#ifndef EMULATOR_STORE_FOLDERWATCH_H
#define EMULATOR_STORE_FOLDERWATCH_H

#include <ctime>
#include <string>

#include <sys/types.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

// Tells cheaply that no name in a folder was made, removed or changed since
// somebody last looked at them, and that the path still leads to that folder:
// by the folder's number and the time of its last change.
//
// That time is coarse. So a folder that has only just been changed counts as
// changed for a while, as does one that cannot be opened.
class FolderWatch {
public:
    explicit FolderWatch(std::string folder);
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    ~FolderWatch();

    // False: look at the names now, then call accept.
    bool isUnchanged() noexcept;

    // The names are as they should be; they were looked at after isUnchanged.
    void accept() noexcept;

private:
    struct State {
        dev_t device = 0;
        ino_t number = 0;
        std::timespec change{};  // the last one
    };

    static bool isSame(const State& one, const State& other) noexcept;

    const std::string path;
    const int folder;      // open, so that no other folder gets its number
    State seen;            // at the last isUnchanged
    State trusted;         // the one in which all was as it should be
    bool settled = false;  // its change was long past by then
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
