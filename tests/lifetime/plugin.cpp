// A plug-in of a host that does not know the library.

#include <string>
#include <vector>

#include <OvMemCppBinding/client/CurrentException.h>
#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/util/XmlPlatformGuard.h>

using namespace Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

namespace {

std::string result;

// Two clients share an event. "valve sees pump, pump got open".
std::string share() {
    std::string plant = "plant";
    std::string pump = "pump";
    std::string valve = "valve";
    std::string locale;
    std::string news = "open";
    std::string events;
    std::string correlation = "plugin";
    std::vector<std::string> seen;
    std::vector<std::string> others;
    OvMEMConnection sender;
    OvMEMConnection receiver;
    receiver.registerClient(plant, pump, locale, others);
    sender.registerClient(plant, valve, locale, seen);
    sender.putEvents(news, others, correlation);
    receiver.getEvents(events, others, correlation);
    receiver.unregisterClient(others);
    sender.unregisterClient(others);
    return "valve sees " + (seen.empty() ? "nobody" : seen.front()) +
           ", pump got " + events;
}

}  // namespace

// Valid until the next call.
extern "C" __attribute__((visibility("default"))) const char* shareAnEvent(
    bool guarded) {
    try {
        if (guarded) {
            const XmlPlatformGuard guard;
            result = share();
        } else {
            result = share();
        }
    } catch (...) {
        result = describeCurrentException();
    }
    return result.c_str();
}
