#ifndef CLI_RESCUEFOLDER_H
#define CLI_RESCUEFOLDER_H

#include <filesystem>

namespace ovmem::cli {

// Makes the folder, and those it stands in, unless they exist. What it makes is
// the owner's alone, whatever the umask. False if events must not be saved
// there: it belongs to another user, who could take, change or remove them, or
// others may replace files in it. Root's folders, and /tmp and the like, in
// which each user may remove the own files only, are fit.
bool prepareRescueFolder(const std::filesystem::path& folder);

}  // namespace ovmem::cli

#endif
