#include "cli/RescuePlaces.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <system_error>

#include <unistd.h>

namespace ovmem::cli {

namespace fs = std::filesystem;

namespace {

const std::string PREFIX = "events-not-delivered-";
const char PERMITTED[] = "0123456789.TZof-";

void addPlace(std::vector<fs::path>& places, const fs::path& place) {
    std::error_code failed;
    // Without a slash at the end.
    const fs::path absolute =
        (fs::absolute(place, failed) / "").lexically_normal().parent_path();
    const auto isSame = [&absolute](const fs::path& other) {
        std::error_code missing;  // then they are not the same
        return other == absolute || fs::equivalent(other, absolute, missing);
    };
    const bool known = std::any_of(places.begin(), places.end(), isSame);
    if (!place.empty() && !failed && !known) {
        places.push_back(absolute);
    }
}

}  // namespace

std::vector<fs::path> listRescuePlaces() {
    std::vector<fs::path> places;
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    if (state != nullptr && *state != '\0') {
        addPlace(places, fs::path(state) / "ovmem");
    }
    if (home != nullptr && *home != '\0') {
        addPlace(places, fs::path(home) / ".local/state/ovmem");
    }
    std::error_code failed;  // the path is then empty
    const fs::path temporary = fs::temp_directory_path(failed);
    addPlace(places, failed ? fs::path("/tmp") : temporary);
    addPlace(places, fs::current_path(failed));
    addPlace(places, "/tmp");
    addPlace(places, "/var/tmp");
    return places;
}

std::string newRescueName() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    tm utc = {};
    gmtime_r(&now.tv_sec, &utc);
    char second[32];
    std::strftime(second, sizeof second, "%Y%m%dT%H%M%S", &utc);
    const std::string fraction = std::to_string(1000000 + now.tv_nsec / 1000);
    return PREFIX + second + '.' + fraction.substr(1) + "Z-" +
           std::to_string(getpid());
}

std::string nameOfPiece(const std::string& rescueName, std::size_t number,
                        std::size_t total) {
    const std::string all = std::to_string(total);
    const std::string own = std::to_string(number);
    const std::string zeros(all.size() - std::min(all.size(), own.size()), '0');
    return rescueName + '-' + zeros + own + "of" + all;
}

bool isRescueName(const std::string& name) {
    return name.starts_with(PREFIX) && name.size() > PREFIX.size() &&
           name.find_first_not_of(PERMITTED, PREFIX.size()) ==
               std::string::npos;
}

std::string nameWhileWriting(const std::string& rescueName) {
    return '.' + rescueName;
}

}  // namespace ovmem::cli
