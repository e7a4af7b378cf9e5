// Posts events: every other client of the server gets them, once.

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

void show(OvMEMConnection& connection, const std::string& client) {
    std::string events, correlation = "show-" + client;
    std::vector<std::string> others;
    connection.getEvents(events, others, correlation);
    std::cout << client << " got " << events.size() << " bytes\n" << events;
}

}  // namespace

int main() {
    std::setlocale(LC_ALL, "");
    const XmlPlatformGuard guard;
    OvMEMConnection pump, valve, boiler;
    try {
        join(pump, "pump");
        join(valve, "valve");
        join(boiler, "boiler");

        // The text is the application's own; nothing looks into it. It must
        // not hold a NUL byte, which the transport takes for its end.
        std::string events = "pump 3 started\npump 3 at 1480 1/min\n";
        std::string correlation = "shift-17";  // to be found in the logs by
        std::vector<std::string> others;
        pump.putEvents(events, others, correlation);
        std::cout << "shared with " << others.size() << " clients\n";

        show(valve, "valve");
        show(boiler, "boiler");
        show(pump, "pump");
    } catch (...) {
        std::cerr << describeCurrentException() << "\n";
        return 1;
    }
}
