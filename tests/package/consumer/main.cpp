// Two clients share an event; what they see is written line by line, so that a
// test can tell which platform libraries stood behind it.

#include <iostream>
#include <string>
#include <vector>

#include <OvMemCppBinding/client/Exceptions.h>
#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/util/XmlEscape.h>

using namespace Orvane::Net::OvModelEventManager;

namespace {

void print(const std::string& what, const std::vector<std::string>& clients) {
    std::cout << what << ":";
    for (const std::string& client : clients)
        std::cout << " " << client;
    std::cout << "\n";
}

void registerAs(Client::OvMEMConnection& connection, std::string name) {
    std::string server = "plant";
    std::string locale = "en_GB";
    std::vector<std::string> shared;
    connection.registerClient(server, name, locale, shared);
    print(name + " shares with", shared);
}

void shareAnEvent() {
    Client::OvMEMConnection pump;
    Client::OvMEMConnection valve;
    std::cout << "status: " << pump.getStatus() << "\n";
    registerAs(pump, "pump");
    registerAs(valve, "valve");

    std::string events = Util::escape("level > 3");
    std::string correlation = "consumer";
    std::vector<std::string> shared;
    valve.putEvents(events, shared, correlation);
    print("valve put to", shared);
    pump.getEvents(events, shared, correlation);
    std::cout << "pump got: " << events << "\n";
}

void failWithoutRegistration() {
    Client::OvMEMConnection stranger;
    std::string text = "event";
    std::vector<std::string> shared;
    try {
        stranger.putEvents(text, shared, text);
    } catch (const Client::OvMEMProtocolException& failure) {
        std::cout << "stranger failed: " << failure.getType() << "\n";
    }
}

}  // namespace

int main() {
    try {
        shareAnEvent();
        failWithoutRegistration();
    } catch (const Client::Exception& failure) {
        std::cout << "failed: " << failure.getMessage() << "\n";
        return 1;
    }
}
