#include "tests/crash/RecordedDisk.h"

#include <algorithm>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace OvMemTest {

namespace {

bool isFolder(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

RecordedDisk::RecordedDisk(std::filesystem::path folder)
    : root(std::move(folder)) {}

std::size_t RecordedDisk::answeredBefore(std::size_t change) const {
    return static_cast<std::size_t>(
        std::upper_bound(answers.begin(), answers.end(), change) -
        answers.begin());
}

SystemCallWatcher::Verdict RecordedDisk::before(const SystemCall& call) {
    struct stat status {};
    existed = ::lstat(call.path.c_str(), &status) == 0;
    return {};
}

void RecordedDisk::after(const SystemCall& call, long result) {
    using Kind = DiskChange::Kind;
    if (result < 0 || !isHere(call)) {
        return;
    }
    const auto length = static_cast<std::size_t>(result);
    const auto offset = static_cast<std::size_t>(call.offset);
    switch (call.kind) {
        case SystemCall::Kind::open:
            if (!existed) {
                done.push_back({Kind::name,
                                fileOf(static_cast<int>(result), true),
                                below(call.path)});
            }
            break;
        case SystemCall::Kind::make:
            done.push_back({Kind::folder, 0, below(call.path)});
            break;
        case SystemCall::Kind::remove:
            done.push_back({Kind::unname, 0, below(call.path)});
            break;
        case SystemCall::Kind::write:
            done.push_back(
                {Kind::write, fileOf(call.file, false), "",
                 std::string(static_cast<const char*>(call.bytes), length),
                 offset});
            break;
        case SystemCall::Kind::cut:
            done.push_back(
                {Kind::cut, fileOf(call.file, false), "", "", offset});
            break;
        case SystemCall::Kind::sync:
            if (isFolder(call.file)) {
                done.push_back({Kind::syncNames, 0, below(call.path)});
            } else {
                done.push_back({Kind::sync, fileOf(call.file, false)});
            }
            break;
        default:
            break;
    }
}

bool RecordedDisk::isHere(const SystemCall& call) const {
    return call.path.starts_with(root.string());
}

std::string RecordedDisk::below(const std::string& path) const {
    return std::filesystem::path(path).lexically_relative(root).string();
}

std::size_t RecordedDisk::fileOf(int descriptor, bool isNew) {
    struct stat status {};
    ::fstat(descriptor, &status);
    if (isNew) {
        files[status.st_ino] = ++fileCount;
    }
    return files.at(status.st_ino);
}

}  // namespace OvMemTest
