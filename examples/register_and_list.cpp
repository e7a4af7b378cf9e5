// Registers three clients and lists who shares whose events.

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

void print(const std::string& title, const std::vector<std::string>& clients) {
    std::cout << title << ":";
    for (const std::string& client : clients) {
        std::cout << " " << client;
    }
    std::cout << "\n";
}

// Each operation appends to the vector that it is given.
void join(OvMEMConnection& connection, std::string client) {
    std::string server = "plant";
    std::string locale = "de_DE";
    std::vector<std::string> others;
    connection.registerClient(server, client, locale, others);
    print(client + " joins", others);
}

}  // namespace

int main() {
    std::setlocale(LC_ALL, "");  // identifiers pass through its code page
    const XmlPlatformGuard guard;
    OvMEMConnection pump, valve, boiler;
    try {
        join(pump, "pump");
        join(valve, "valve");
        join(boiler, "Kühlkessel");

        std::vector<std::string> others;
        pump.getSharedClients(others);
        print("pump sees", others);

        others.clear();
        valve.unregisterClient(others);
        print("valve leaves", others);
    } catch (...) {
        std::cerr << describeCurrentException() << "\n";
        return 1;
    }
}
