#ifndef BENCH_STOREFOLDER_H
#define BENCH_STOREFOLDER_H

#include <string>

namespace Orvane::Net::OvModelEventManager::Bench {

// A new folder below the working directory, removed with all that is in it.
class StoreFolder {
public:
    StoreFolder();
    ~StoreFolder();
    StoreFolder(const StoreFolder&) = delete;
    StoreFolder& operator=(const StoreFolder&) = delete;

    // The path of a file in it, which need not exist.
    std::string file() const { return path + "/events.db"; }

private:
    std::string path;
};

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
