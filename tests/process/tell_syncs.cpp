// Registers two clients, puts twice and gets, and says of each step whether it
// waited for the disk before it was answered:
//
//     tell_syncs
//
// This program's fsync and fdatasync come before those of the C library.

#include <iostream>
#include <string>
#include <vector>

#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <dlfcn.h>

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

namespace {

int syncs = 0;

int callNext(const char* name, int descriptor) {
    ++syncs;
    using Sync = int (*)(int);
    return reinterpret_cast<Sync>(dlsym(RTLD_NEXT, name))(descriptor);
}

template <typename Operation>
void tell(const char* step, Operation operation) {
    const int before = syncs;
    operation();
    std::cout << step << (syncs > before ? ": waited\n" : ": went on\n");
}

}  // namespace

// In place of the C library's, for the libraries too.
#define OVMEM_SEEN_BY_ALL extern "C" __attribute__((visibility("default")))

OVMEM_SEEN_BY_ALL int fsync(int descriptor) {
    return callNext("fsync", descriptor);
}

OVMEM_SEEN_BY_ALL int fdatasync(int descriptor) {
    return callNext("fdatasync", descriptor);
}

int main() {
    std::string server = "plant", pump = "pump", valve = "valve", locale;
    std::string events = "tick\n", correlation = "sync";
    std::vector<std::string> others;
    OvMEMConnection getter, putter;
    getter.registerClient(server, pump, locale, others);
    tell("register",
         [&] { putter.registerClient(server, valve, locale, others); });
    for (int step = 0; step < 2; ++step) {
        tell("put", [&] { putter.putEvents(events, others, correlation); });
    }
    tell("get", [&] { getter.getEvents(events, others, correlation); });
}
