#include "emulator/store/StoreUrl.h"

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
    "Set OVMEM_STORE to sqlite:PATH, sqlite:PATH?synchronous=NORMAL, "
    "sqlite:PATH?synchronous=FULL or memory:.";

StoreError urlError(const std::string& url, const std::string& fault) {
    return StoreError("The store URL '" + url + "' " + fault + ". " +
                      std::string(forms));
}

Synchronous parseOption(const std::string& url, std::string_view option) {
    if (option == "synchronous=FULL") {
        return Synchronous::full;
    }
    if (option == "synchronous=NORMAL") {
        return Synchronous::normal;
    }
    throw urlError(url, "has an unknown option");
}

void makeFolders(const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    if (error) {
        throw StoreError("The folder '" + file.parent_path().string() +
                         "' of the event store cannot be made (" +
                         error.message() +
                         "). Make it yourself, or set OVMEM_STORE to another "
                         "place.");
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
        options.synchronous =
            parseOption(url, std::string_view(path).substr(mark + 1));
        path.resize(mark);
    }
    if (path.empty() || path.back() == '/') {
        throw urlError(url, "names no file");
    }
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
    makeFolders(options->path);
    return std::make_unique<SqliteStore>(*options);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
