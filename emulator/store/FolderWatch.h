#ifndef EMULATOR_STORE_FOLDERWATCH_H
#define EMULATOR_STORE_FOLDERWATCH_H

#include <ctime>
#include <string>

namespace Orvane::Net::OvModelEventManager::Emulator {

// Tells cheaply that no name in a folder was made, removed or changed since
// somebody last looked at them: by the time of the folder's last change.
//
// That time is coarse. So a folder that has only just been changed counts as
// changed for a while, as does one that cannot be opened.
class FolderWatch {
public:
    explicit FolderWatch(const std::string& folder);
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    ~FolderWatch();

    // False: look at the names now, then call accept.
    bool isUnchanged() noexcept;

    // The names are as they should be; they were looked at after isUnchanged.
    void accept() noexcept;

private:
    const int folder;
    std::timespec seen{};     // the last change, at the last isUnchanged
    std::timespec trusted{};  // the one at which all was as it should be
    bool settled = false;     // it was long past by then
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
