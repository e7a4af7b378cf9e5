#include "emulator/store/StoreUrl.h"

#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "emulator/store/MemoryStore.h"
#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr std::string_view sqliteScheme = "sqlite:";
constexpr std::string_view forms =
    "Set OVMEM_STORE to sqlite:PATH or memory:. Options of sqlite:PATH follow "
    "a '?', with '&' between them: synchronous=NORMAL or FULL, access=OWNER "
    "or GROUP.";

int byte(char character) {
    return static_cast<unsigned char>(character);
}

StoreError urlError(const std::string& url, const std::string& fault) {
    return StoreError("The store URL '" + url + "' " + fault + ". " +
                      std::string(forms));
}

void parseOption(SqliteOptions& options, const std::string& url,
                 std::string_view option) {
    if (option == "synchronous=FULL") {
        options.synchronous = Synchronous::full;
    } else if (option == "synchronous=NORMAL") {
        options.synchronous = Synchronous::normal;
    } else if (option == "access=OWNER") {
        options.access = Access::owner;
    } else if (option == "access=GROUP") {
        options.access = Access::group;
    } else {
        throw urlError(url, "has an unknown option");
    }
}

void parseOptions(SqliteOptions& options, const std::string& url,
                  std::string_view list) {
    for (;;) {
        const auto end = list.find('&');
        parseOption(options, url, list.substr(0, end));
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

const char* variable(const char* name) {
    const char* value = std::getenv(name);
    return value && *value ? value : nullptr;
}

}  // namespace

std::optional<SqliteOptions> parseStoreUrl(const std::string& url) {
    if (url == "memory:") {
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
        return std::make_unique<MemoryStore>();
    }
    return std::make_unique<SqliteStore>(*options);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
