#include "cli/RescueFile.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace ovmem::cli {

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> listPlaces() {
    std::vector<fs::path> places;
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    if (state != nullptr && *state != '\0') {
        places.push_back(fs::path(state) / "ovmem");
    } else if (home != nullptr && *home != '\0') {
        places.push_back(fs::path(home) / ".local/state/ovmem");
    }
    std::error_code ignored;
    places.push_back(fs::temp_directory_path(ignored));
    places.push_back(fs::current_path(ignored));
    return places;
}

bool writeAndSync(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    return fsync(descriptor) == 0;
}

std::optional<std::string> saveIn(const fs::path& place,
                                  std::string_view bytes) {
    std::error_code ignored;
    fs::create_directories(place, ignored);
    std::string path = (place / "events-not-delivered-XXXXXX").string();
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) {
        return std::nullopt;
    }
    const bool written = writeAndSync(descriptor, bytes);
    if (close(descriptor) == 0 && written) {
        return path;
    }
    unlink(path.c_str());
    return std::nullopt;
}

}  // namespace

std::optional<std::string> saveToRescueFile(std::string_view bytes) {
    for (const fs::path& place : listPlaces()) {
        if (place.empty()) {
            continue;
        }
        if (auto path = saveIn(place, bytes)) {
            return path;
        }
    }
    return std::nullopt;
}

}  // namespace ovmem::cli
