// Fetches events again and again. Whatever arrived since the last time comes
// as one text, in the order in which it was put.

#include <clocale>
#include <iostream>
#include <string>
#include <vector>

#include <OvMemCppBinding/client/CurrentException.h>
#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/util/XmlPlatformGuard.h>

using namespace Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

namespace {

void join(OvMEMConnection& connection, std::string client) {
    std::string server = "plant", locale;
    std::vector<std::string> others;
    connection.registerClient(server, client, locale, others);
}

void put(OvMEMConnection& connection, std::string events) {
    std::string correlation = "poll-events";
    std::vector<std::string> others;
    connection.putEvents(events, others, correlation);
}

}  // namespace

int main() {
    std::setlocale(LC_ALL, "");
    const XmlPlatformGuard guard;
    OvMEMConnection pump, valve;
    try {
        join(pump, "pump");
        join(valve, "valve");

        std::string events;  // replaced by each round
        std::vector<std::string> others;
        for (int round = 0; round < 4; ++round) {
            // Stands for what other processes do between two rounds.
            for (int step = 0; step < round; ++step) {
                put(valve, "valve 7 step " + std::to_string(step) + "\n");
            }
            std::string correlation = "round-" + std::to_string(round);
            pump.getEvents(events, others, correlation);
            std::cout << correlation << (events.empty() ? ": nothing\n" : ":\n")
                      << events;
        }
    } catch (...) {
        std::cerr << describeCurrentException() << "\n";
        return 1;
    }
}
