// Keeps events apart. What several puts sent arrives as one text with nothing
// in between, so each event goes out in a frame: the number of its bytes, a
// colon, the bytes, a line feed.

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

// The event may hold anything but a NUL byte.
std::string frame(const std::string& event) {
    return std::to_string(event.size()) + ':' + event + '\n';
}

// Reads the frame at `position` and moves behind it. False, and nothing is
// changed, if what stands there is no whole frame.
bool readFrame(const std::string& text, std::size_t& position,
               std::string& event) {
    const std::size_t mostDigits = 9;  // of a length: below a gigabyte
    const std::size_t colon = text.find_first_not_of("0123456789", position);
    if (colon == std::string::npos || text[colon] != ':' || colon == position ||
        colon - position > mostDigits) {
        return false;
    }
    const std::size_t length =
        std::stoul(text.substr(position, colon - position));
    const std::size_t begin = colon + 1;
    if (text.size() - begin <= length || text[begin + length] != '\n') {
        return false;
    }
    event = text.substr(begin, length);
    position = begin + length + 1;
    return true;
}

void join(OvMEMConnection& connection, std::string client) {
    std::string server = "plant", locale;
    std::vector<std::string> others;
    connection.registerClient(server, client, locale, others);
}

void put(OvMEMConnection& connection, std::string events) {
    std::string correlation = "frame-events";
    std::vector<std::string> others;
    connection.putEvents(events, others, correlation);
}

void showEvents(OvMEMConnection& connection) {
    std::string text, event, correlation = "frame-events";
    std::vector<std::string> others;
    connection.getEvents(text, others, correlation);
    std::size_t position = 0;
    while (readFrame(text, position, event)) {
        std::cout << "event [" << event << "]\n";
    }
    // Somebody puts without frames. What is left is gone from the queue, so
    // keep it where a person can look at it.
    if (position < text.size()) {
        std::cout << "no frame [" << text.substr(position) << "]\n";
    }
}

}  // namespace

int main() {
    std::setlocale(LC_ALL, "");
    const XmlPlatformGuard guard;
    OvMEMConnection pump, valve;
    try {
        join(pump, "pump");
        join(valve, "valve");

        std::cout << "without frames:\n";
        put(valve, "valve 7 open");
        put(valve, "valve 8 shut");
        showEvents(pump);

        std::cout << "with frames:\n";
        put(valve, frame("valve 7 open"));
        put(valve, frame("") + frame("3:x\n\nvalve 8 shut"));
        showEvents(pump);

        std::cout << "with frames at first:\n";
        put(valve, frame("valve 7 open") + "99:valve 8 shut\n");
        showEvents(pump);
    } catch (...) {
        std::cerr << describeCurrentException() << "\n";
        return 1;
    }
}
