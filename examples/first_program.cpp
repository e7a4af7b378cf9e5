#include <clocale>
#include <iostream>

#include <OvMemCppBinding/client/Exceptions.h>
#include <OvMemCppBinding/client/OvMEMConnection.h>

using namespace Orvane::Net::OvModelEventManager::Client;

int main() try {
    std::setlocale(LC_ALL, "");
    std::string plant = "plant", pump = "pump", valve = "valve", locale;
    std::string news = "valve 7 open", events, correlation = "first";
    std::vector<std::string> shared;
    OvMEMConnection sender, receiver;
    receiver.registerClient(plant, pump, locale, shared);
    sender.registerClient(plant, valve, locale, shared);
    sender.putEvents(news, shared, correlation);
    receiver.getEvents(events, shared, correlation);
    std::cout << "pump got: " << events << "\n";
} catch (const Exception& failure) {
    std::cerr << failure.getMessage() << "\n";
    return 1;
}
