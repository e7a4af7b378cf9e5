#include "emulator/store/LockHolder.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <sstream>

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

struct File {
    unsigned major;
    unsigned minor;
    std::uint64_t inode;

    bool operator==(const File&) const = default;
};

std::vector<File> identify(const std::vector<std::string>& paths) {
    std::vector<File> files;
    for (const std::string& path : paths) {
        struct stat status {};
        if (::stat(path.c_str(), &status) == 0) {
            files.push_back(
                {major(status.st_dev), minor(status.st_dev), status.st_ino});
        }
    }
    return files;
}

// A line of /proc/locks: "7: FLOCK  ADVISORY  WRITE 42 08:01:1234 0 EOF". That
// of one who waits has "->" behind its number.
struct Lock {
    bool held = false;
    long process = 0;
    File file{};
};

Lock parse(const std::string& line) {
    std::istringstream words(line);
    std::string number, kind, strength, access, where;
    Lock lock;
    if (words >> number >> kind >> strength >> access >> lock.process >>
        where) {
        unsigned long long inode = 0;
        // A lock of an open file, as the gate's queue has them, has no process.
        lock.held = kind != "->" && lock.process > 0 && access != "READ" &&
                    std::sscanf(where.c_str(), "%x:%x:%llu", &lock.file.major,
                                &lock.file.minor, &inode) == 3;
        lock.file.inode = inode;
    }
    return lock;
}

std::string firstLine(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

std::string describe(long process) {
    const std::string folder = "/proc/" + std::to_string(process);
    const std::string name = firstLine(folder + "/comm");
    if (name.empty()) {
        return "a process that cannot be seen from here";
    }
    // The state is the letter behind the name: "42 (vim) T ..."
    const std::string status = firstLine(folder + "/stat");
    const std::size_t state = status.rfind(") ");
    const bool stopped =
        state != std::string::npos && (status.compare(state + 2, 1, "T") == 0 ||
                                       status.compare(state + 2, 1, "t") == 0);
    return "process " + std::to_string(process) + " (" + name + ")" +
           (stopped ? ", which is stopped," : "");
}

}  // namespace

std::string describeLockHolder(const std::vector<std::string>& files) {
    const std::vector<File> identities = identify(files);
    long holder = 0;
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        const Lock lock = parse(line);
        const bool ours = lock.process == ::getpid();
        if (lock.held && !(ours && holder) &&
            std::find(identities.begin(), identities.end(), lock.file) !=
                identities.end()) {
            holder = lock.process;
        }
    }
    return holder == ::getpid() ? "another part of this process"
                                : describe(holder);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
