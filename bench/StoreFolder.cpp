#include "bench/StoreFolder.h"

#include <filesystem>
#include <stdexcept>

#include <stdlib.h>

namespace Orvane::Net::OvModelEventManager::Bench {

StoreFolder::StoreFolder()
    : path((std::filesystem::current_path() / "bench-store-XXXXXX").string()) {
    if (::mkdtemp(path.data()) == nullptr) {
        throw std::runtime_error("cannot make a folder like " + path);
    }
}

StoreFolder::~StoreFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

}  // namespace Orvane::Net::OvModelEventManager::Bench
