#include <clocale>
#include <iostream>

#include <OvMemCppBinding/client/CurrentException.h>
#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/util/XmlPlatformGuard.h>

using namespace Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

int main() try {
    std::setlocale(LC_ALL, "");
    const XmlPlatformGuard guard;
    std::string plant = "plant", pump = "pump", valve = "valve", locale;
    std::string news = "valve 7 open", events, correlation = "first";
    std::vector<std::string> shared;
    OvMEMConnection sender, receiver;
    receiver.registerClient(plant, pump, locale, shared);
    sender.registerClient(plant, valve, locale, shared);
    sender.putEvents(news, shared, correlation);
    receiver.getEvents(events, shared, correlation);
    std::cout << "pump got: " << events << "\n";
} catch (...) {
    std::cerr << describeCurrentException() << "\n";
    return 1;
}
