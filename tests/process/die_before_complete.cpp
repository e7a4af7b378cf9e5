// Fetches events with the library and kills itself, as kill -9 would, when the
// library has the whole reply and is about to complete the exchange:
//
//     die_before_complete SERVER CLIENT
//
// This program's OvMem_Complete comes before the transport's own.

#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/platform/OvMemBinding.h>
#include <dlfcn.h>

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

namespace {

bool fetching = false;

}  // namespace

int32_t OvMem_Complete() {
    if (fetching) {
        std::raise(SIGKILL);
    }
    using Complete = int32_t (*)();
    return reinterpret_cast<Complete>(dlsym(RTLD_NEXT, "OvMem_Complete"))();
}

int main(int count, char** arguments) {
    if (count != 3) {
        return 1;
    }
    std::string server = arguments[1], client = arguments[2], locale;
    std::string events, correlation = "dying";
    std::vector<std::string> others;
    OvMEMConnection connection;
    connection.registerClient(server, client, locale, others);
    fetching = true;
    connection.getEvents(events, others, correlation);
    return 1;
}
