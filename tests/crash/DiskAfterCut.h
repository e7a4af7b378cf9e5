#ifndef TESTS_CRASH_DISKAFTERCUT_H
#define TESTS_CRASH_DISKAFTERCUT_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/crash/RecordedDisk.h"

namespace OvMemTest {

// What a disk may hold when the power was cut after some changes. What was
// synced is there. Of what was not, some is: nothing, everything, all up to
// some moment, or any part in any order. A write may be torn: each of its
// sectors is there or not. A file may have grown without its bytes. The index
// of a log, which is never synced, may hold anything.
class DiskAfterCut {
public:
    // The same seed gives the same disk.
    DiskAfterCut(const std::vector<DiskChange>& changes, std::size_t cutAfter,
                 std::uint64_t seed);

    void writeTo(const std::filesystem::path& folder) const;

private:
    using Random = std::mt19937_64;
    using Changes = std::vector<const DiskChange*>;

    void keepSome(Changes changes, std::string& content);
    void keepSomeNames(const Changes& changes);
    void apply(const DiskChange& change, std::string& content, bool torn);
    void applyName(const DiskChange& change);
    Changes selection(Changes changes, bool mayReorder);
    bool chance(double probability);
    std::size_t below(std::size_t limit);

    Random random;
    std::map<std::size_t, std::string> contents;  // by file
    std::map<std::string, std::size_t> names;     // 0: a folder
};

}  // namespace OvMemTest

#endif
