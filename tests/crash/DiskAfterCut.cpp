#include "tests/crash/DiskAfterCut.h"

#include <algorithm>
#include <fstream>

namespace OvMemTest {

namespace {

namespace fs = std::filesystem;
bool isAboutNames(const DiskChange& change) {
    return change.kind == DiskChange::Kind::name ||
           change.kind == DiskChange::Kind::folder ||
           change.kind == DiskChange::Kind::unname;
}

std::string folderOf(const std::string& path) {
    const std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

}  // namespace

DiskAfterCut::DiskAfterCut(const std::vector<DiskChange>& changes,
                           std::size_t cutAfter, std::uint64_t seed)
    : random(seed) {
    std::map<std::size_t, Changes> pending;  // by file
    Changes pendingNames;
    for (std::size_t i = 0; i < cutAfter; ++i) {
        const DiskChange& change = changes[i];
        if (isAboutNames(change)) {
            pendingNames.push_back(&change);
        } else if (change.kind == DiskChange::Kind::syncNames) {
            std::erase_if(pendingNames, [&](const DiskChange* name) {
                const bool isSafe = folderOf(name->path) == change.path;
                if (isSafe) {
                    applyName(*name);
                }
                return isSafe;
            });
        } else if (change.kind == DiskChange::Kind::sync) {
            for (const DiskChange* safe : pending[change.file]) {
                apply(*safe, contents[change.file], false);
            }
            pending.erase(change.file);
        } else {
            pending[change.file].push_back(&change);
        }
    }
    for (auto& [file, unsafe] : pending) {
        keepSome(unsafe, contents[file]);
    }
    keepSomeNames(pendingNames);
}

void DiskAfterCut::writeTo(const fs::path& folder) const {
    for (const auto& [name, file] : names) {
        if (file == 0) {
            fs::create_directory(folder / name);
            continue;
        }
        if (!fs::exists((folder / name).parent_path())) {
            continue;  // that of its folder is lost
        }
        std::ofstream stream(folder / name, std::ios::binary);
        const auto content = contents.find(file);
        if (name.ends_with("-shm")) {
            Random garbage = random;
            for (int word = 0; word < 4096; ++word) {
                const auto bytes = garbage();
                stream.write(reinterpret_cast<const char*>(&bytes),
                             sizeof(bytes));
            }
        } else if (content != contents.end()) {
            stream << content->second;
        }
    }
}

void DiskAfterCut::keepSome(Changes changes, std::string& content) {
    const bool tears = chance(0.7);
    std::size_t grown = 0;
    for (const DiskChange* change : changes) {
        grown = std::max(grown, change->offset + change->bytes.size());
    }
    const Changes kept = selection(changes, true);
    for (const DiskChange* change : kept) {
        const bool isLast = change == kept.back();
        apply(*change, content, tears && (isLast || chance(0.1)));
    }
    if (grown > content.size() && chance(0.2)) {
        content.resize(grown);
    }
}

void DiskAfterCut::keepSomeNames(const Changes& changes) {
    for (const DiskChange* change : selection(changes, false)) {
        applyName(*change);
    }
}

// A file system may keep the order of changes, or not.
DiskAfterCut::Changes DiskAfterCut::selection(Changes changes,
                                              bool mayReorder) {
    switch (below(5)) {
        case 0:
            return {};
        case 1:
            return changes;
        case 2:
            changes.resize(below(changes.size() + 1));
            return changes;
        default:
            std::erase_if(changes,
                          [&](const DiskChange*) { return chance(0.5); });
            if (mayReorder && chance(0.7)) {
                std::shuffle(changes.begin(), changes.end(), random);
            }
            return changes;
    }
}

void DiskAfterCut::apply(const DiskChange& change, std::string& content,
                         bool torn) {
    if (change.kind == DiskChange::Kind::cut) {
        content.resize(change.offset);
        return;
    }
    const std::size_t end = change.offset + change.bytes.size();
    const std::size_t sector = torn && chance(0.5) ? 4096 : 512;
    for (std::size_t at = change.offset; at < end;) {
        const std::size_t next = std::min(end, (at / sector + 1) * sector);
        if (!torn || chance(0.5)) {
            content.resize(std::max(content.size(), next));
            content.replace(at, next - at, change.bytes, at - change.offset,
                            next - at);
        }
        at = next;
    }
}

void DiskAfterCut::applyName(const DiskChange& change) {
    if (change.kind == DiskChange::Kind::unname) {
        names.erase(change.path);
    } else {
        names[change.path] = change.file;
    }
}

bool DiskAfterCut::chance(double probability) {
    return std::bernoulli_distribution(probability)(random);
}

std::size_t DiskAfterCut::below(std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

}  // namespace OvMemTest
