#include "emulator/store/StoreUrl.h"

#include <cctype>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <set>
#include <string_view>
#include <system_error>

#include "emulator/store/MemoryStore.h"
#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr std::string_view sqliteScheme = "sqlite:";
constexpr std::int64_t mostSeconds = 24 * 60 * 60;
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::string_view forms =
    "Set OVMEM_STORE to sqlite:PATH or memory:. Options follow a '?', with "
    "'&' between them: portion=BYTES, dedupe=correlation, lease=SECONDS, "
    "limit-events=N, limit-bytes=N, limit-age=SECONDS; of sqlite:PATH alone: "
    "synchronous=NORMAL or FULL, access=OWNER or GROUP.";

int byte(char character) {
    return static_cast<unsigned char>(character);
}

StoreError urlError(const std::string& url, const std::string& fault) {
    return StoreError("The store URL '" + url + "' " + fault + ". " +
                      std::string(forms));
}

bool isInMemory(const std::string& url) {
    return url == "memory:" || url.starts_with("memory:?");
}

// One option of a URL: NAME=VALUE, the '=' and what follows perhaps missing.
struct Option {
    Option(const std::string& whole, std::string_view text)
        : url(whole), name(text.substr(0, text.find('='))) {
        text.remove_prefix(name.size());
        value = text.substr(text.empty() ? 0 : 1);
    }

    std::int64_t number(std::int64_t most = largest) const {
        std::int64_t result = 0;
        const char* const end = value.data() + value.size();
        const auto [rest, error] = std::from_chars(value.data(), end, result);
        if (error != std::errc() || rest != end || result < 1 ||
            result > most) {
            throw urlError(url, "gives " + std::string(name) +
                                    " no whole number from 1 to " +
                                    std::to_string(most));
        }
        return result;
    }

    bool is(std::string_view which, std::string_view given) const {
        return name == which && value == given;
    }

    const std::string& url;
    std::string_view name;
    std::string_view value;
};

// False if it is no option of any store.
bool parseCommonOption(SqliteOptions& options, const Option& option) {
    if (option.name == "portion") {
        options.portion = static_cast<std::size_t>(option.number());
    } else if (option.is("dedupe", "correlation")) {
        options.dedupe = true;
    } else if (option.name == "lease") {
        options.lease = std::chrono::seconds(option.number(mostSeconds));
    } else if (option.name == "limit-events") {
        options.limits.events = option.number();
    } else if (option.name == "limit-bytes") {
        options.limits.bytes = option.number();
    } else if (option.name == "limit-age") {
        options.limits.seconds = option.number();
    } else {
        return false;
    }
    return true;
}

// The same of a store in a file.
bool parseFileOption(SqliteOptions& options, const Option& option) {
    if (option.is("synchronous", "FULL")) {
        options.synchronous = Synchronous::full;
    } else if (option.is("synchronous", "NORMAL")) {
        options.synchronous = Synchronous::normal;
    } else if (option.is("access", "OWNER")) {
        options.access = Access::owner;
    } else if (option.is("access", "GROUP")) {
        options.access = Access::group;
    } else {
        return false;
    }
    return true;
}

void parseOptions(SqliteOptions& options, const std::string& url,
                  std::string_view list) {
    std::set<std::string_view> seen;
    for (;;) {
        const auto end = list.find('&');
        const Option option(url, list.substr(0, end));
        if (!parseCommonOption(options, option)) {
            if (!parseFileOption(options, option)) {
                throw urlError(url, "has an unknown option");
            }
            if (isInMemory(url)) {
                throw urlError(url,
                               "has an option that a store in memory does not "
                               "have");
            }
        }
        if (!seen.insert(option.name).second) {
            throw urlError(url, "gives " + std::string(option.name) + " twice");
        }
        if (end == std::string_view::npos) {
            return;
        }
        list.remove_prefix(end + 1);
    }
}

// What looks like a path but would name another file than it seems to.
void requirePlainPath(const std::string& url, std::string_view path) {
    if (path == ":memory:") {
        throw urlError(url, "names no file; a store in memory is memory:");
    }
    if (path == "~" || path.starts_with("~/")) {
        throw urlError(url,
                       "begins with '~', which only a shell replaces; write "
                       "the whole path");
    }
    for (std::size_t at = path.find('%'); at != std::string_view::npos;
         at = path.find('%', at + 1)) {
        if (at + 2 < path.size() && std::isxdigit(byte(path[at + 1])) != 0 &&
            std::isxdigit(byte(path[at + 2])) != 0) {
            throw urlError(url,
                           "holds a '%' with two digits, which is not "
                           "decoded; write the path as it is");
        }
    }
}

// Of a store in memory: those that it has in common with one in a file.
SqliteOptions parseMemoryUrl(const std::string& url) {
    SqliteOptions options;
    if (const auto mark = url.find('?'); mark != std::string::npos) {
        parseOptions(options, url, std::string_view(url).substr(mark + 1));
    }
    return options;
}

const char* variable(const char* name) {
    const char* value = std::getenv(name);
    return value && *value ? value : nullptr;
}

}  // namespace

std::optional<SqliteOptions> parseStoreUrl(const std::string& url) {
    if (isInMemory(url)) {
        parseMemoryUrl(url);
        return std::nullopt;
    }
    if (url.starts_with("postgresql:") || url.starts_with("postgres:")) {
        throw urlError(url, "names a PostgreSQL store, which is not built in");
    }
    if (!url.starts_with(sqliteScheme)) {
        throw urlError(url, "is of no known kind");
    }
    SqliteOptions options;
    std::string path = url.substr(sqliteScheme.size());
    if (const auto mark = path.rfind('?'); mark != std::string::npos) {
        parseOptions(options, url, std::string_view(path).substr(mark + 1));
        path.resize(mark);
    }
    if (path.empty() || path.back() == '/') {
        throw urlError(url, "names no file");
    }
    requirePlainPath(url, path);
    std::error_code error;
    options.path = std::filesystem::absolute(path, error).string();
    if (error) {
        throw urlError(url, "needs a working directory, and there is none");
    }
    return options;
}

std::string storeUrlOfEnvironment() {
    if (const char* url = variable("OVMEM_STORE")) {
        return url;
    }
    const std::string file = "/ovmem/events.db";
    if (const char* state = variable("XDG_STATE_HOME")) {
        return std::string(sqliteScheme) + state + file;
    }
    if (const char* home = variable("HOME")) {
        return std::string(sqliteScheme) + home + "/.local/state" + file;
    }
    throw StoreError(
        "No variable says where the event store is: OVMEM_STORE, "
        "XDG_STATE_HOME and HOME are not set. " +
        std::string(forms));
}

std::unique_ptr<EventStore> openStore(const std::string& url) {
    const std::optional<SqliteOptions> options = parseStoreUrl(url);
    if (!options) {
        const SqliteOptions common = parseMemoryUrl(url);
        return std::make_unique<MemoryStore>(
            MemoryStore::Options{.portion = common.portion,
                                 .dedupe = common.dedupe,
                                 .lease = LeaseTerms{common.lease},
                                 .limits = common.limits});
    }
    return std::make_unique<SqliteStore>(*options);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
