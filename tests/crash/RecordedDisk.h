#ifndef TESTS_CRASH_RECORDEDDISK_H
#define TESTS_CRASH_RECORDEDDISK_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/emulator/SystemCalls.h"

namespace OvMemTest {

// What was done to the files of a folder, in order.
struct DiskChange {
    enum class Kind {
        name,      // `path` is now that of `file`
        folder,    // `path` is now that of a folder
        unname,    // `path` is now that of nothing
        write,     // of `bytes` at `offset` into `file`
        cut,       // of `file`, to the length `offset`
        sync,      // of `file`: all that was written into it before is safe
        syncNames  // of the folder `path`: the names in it are safe
    };

    Kind kind;
    std::size_t file = 0;
    std::string path = {};  // below the folder
    std::string bytes = {};
    std::size_t offset = 0;
};

// Remembers, during its life, what this thread does to the files of a folder,
// which is empty at first.
class RecordedDisk : private SystemCallWatcher {
public:
    explicit RecordedDisk(std::filesystem::path folder);

    const std::vector<DiskChange>& changes() const { return done; }

    // The step that is just over was answered.
    void answer() { answers.push_back(done.size()); }

    // How many steps were answered before the change of this number.
    std::size_t answeredBefore(std::size_t change) const;

private:
    Verdict before(const SystemCall& call) override;
    void after(const SystemCall& call, long result) override;

    bool isHere(const SystemCall& call) const;
    std::string below(const std::string& path) const;
    std::size_t fileOf(int descriptor, bool isNew);

    const std::filesystem::path root;
    std::vector<DiskChange> done;
    std::vector<std::size_t> answers;
    std::map<ino_t, std::size_t> files;
    std::size_t fileCount = 0;
    bool existed = false;  // before the present call
};

}  // namespace OvMemTest

#endif
