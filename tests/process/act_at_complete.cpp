// Gets or puts events with the library, and at the end of that exchange does
// what its last argument says:
//
//     act_at_complete SERVER CLIENT get|put ACTION
//
// die-before: kills itself, as kill -9 would, when the library has the whole
//     reply and is about to complete the exchange
// die-after: kills itself when the exchange is complete
// refuse: does not complete the exchange, as a transport that fails there
// complete: completes it
//
// What is put comes from standard input; what was got goes to standard output.
// This program's OvMem_Complete comes before the transport's own.

#include <csignal>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/platform/OvMemBinding.h>
#include <dlfcn.h>

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

namespace {

std::string action;  // empty: none yet

}  // namespace

int32_t OvMem_Complete() {
    const std::string now = std::exchange(action, "");
    if (now == "die-before") {
        std::raise(SIGKILL);
    }
    if (now == "refuse") {
        return -3001;
    }
    using Complete = int32_t (*)();
    const int32_t status =
        reinterpret_cast<Complete>(dlsym(RTLD_NEXT, "OvMem_Complete"))();
    if (now == "die-after") {
        std::raise(SIGKILL);
    }
    return status;
}

int main(int count, char** arguments) {
    if (count != 5) {
        return 1;
    }
    std::string server = arguments[1], client = arguments[2], locale;
    std::string events, correlation = "acting";
    std::vector<std::string> others;
    OvMEMConnection connection;
    connection.registerClient(server, client, locale, others);
    action = arguments[4];
    if (std::string(arguments[3]) == "get") {
        connection.getEvents(events, others, correlation);
        std::cout << events;
    } else {
        events.assign(std::istreambuf_iterator<char>(std::cin), {});
        connection.putEvents(events, others, correlation);
    }
    return action.empty() ? 0 : 1;
}
