#include "cli/RescueFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/Descriptor.h"
#include "cli/RescueFolder.h"
#include "cli/RescuePlaces.h"

namespace ovmem::cli {

namespace fs = std::filesystem;

namespace {

const std::size_t MOST_FILES = 1000;

// The size that a file may have, after asking for all that is allowed.
std::size_t largestFile() {
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_FSIZE, &limit);
    return limit.rlim_cur;
}

std::vector<std::string_view> split(std::string_view events) {
    const std::size_t largest = largestFile();
    if (largest <= events.size() / MOST_FILES) {
        return {events};  // as if there were no limit; it will fail
    }
    std::vector<std::string_view> pieces;
    for (std::size_t begin = 0; begin < events.size(); begin += largest) {
        pieces.push_back(events.substr(begin, largest));
    }
    return pieces;
}

// How many of the bytes the file has taken.
std::size_t writeTo(int descriptor, std::string_view bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    return done;
}

bool sync(const fs::path& folder) {
    const Descriptor opened(
        open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fsync(opened.get()) == 0;
}

// Never over a file that exists. Some file systems know only one of the ways.
bool moveTo(const fs::path& from, const fs::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(),
                  RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (link(from.c_str(), to.c_str()) != 0) {
        return false;
    }
    // It has its name. Another copy elsewhere would be worse than a hidden name
    // that stays.
    unlink(from.c_str());
    return true;
}

void discard(const Rescue& rescue) {
    for (const std::string& file : rescue.files) {
        unlink(file.c_str());
    }
}

// Saves the events in one folder.
class Attempt {
public:
    explicit Attempt(fs::path place) : folder(std::move(place)) {}

    Rescue save(const std::vector<std::string_view>& pieces) {
        if (!prepareRescueFolder(folder)) {
            return rescue;
        }
        const std::string name = newRescueName();
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            const std::string own =
                pieces.size() == 1 ? name
                                   : nameOfPiece(name, i + 1, pieces.size());
            if (!write(own, pieces[i])) {
                return rescue;
            }
        }
        rescue.complete = publish();
        return rescue;
    }

private:
    // All that can fail before the file may be called saved.
    bool write(const std::string& name, std::string_view bytes) {
        const fs::path path = folder / nameWhileWriting(name);
        Descriptor file(
            open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (file.get() < 0) {
            return false;
        }
        fchmod(file.get(), S_IRUSR | S_IWUSR);  // the umask may have taken it
        names.push_back(name);
        rescue.files.push_back(path.string());
        const std::size_t written = writeTo(file.get(), bytes);
        rescue.bytes += written;
        const bool synced = fsync(file.get()) == 0;
        return file.close() && synced && written == bytes.size();
    }

    bool publish() {
        for (std::size_t i = 0; i < names.size(); ++i) {
            const fs::path path = folder / names[i];
            if (!moveTo(rescue.files[i], path)) {
                return false;
            }
            rescue.files[i] = path.string();
        }
        return sync(folder);
    }

    const fs::path folder;
    std::vector<std::string> names;
    Rescue rescue;
};

}  // namespace

Rescue saveToRescueFile(std::string_view events) {
    const std::vector<std::string_view> pieces = split(events);
    Rescue best;
    for (const fs::path& place : listRescuePlaces()) {
        Rescue rescue = Attempt(place).save(pieces);
        const bool better = rescue.complete || rescue.bytes > best.bytes;
        discard(better ? best : rescue);
        if (better) {
            best = std::move(rescue);
        }
        if (best.complete) {
            break;
        }
    }
    return best;
}

}  // namespace ovmem::cli
