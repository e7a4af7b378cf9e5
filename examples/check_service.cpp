// Asks whether the service is alive. Needs no registration.

#include <iostream>

#include <OvMemCppBinding/client/Exceptions.h>
#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <OvMemCppBinding/util/XmlPlatformGuard.h>

using namespace Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

int main() {
    const XmlPlatformGuard guard;
    OvMEMConnection connection;
    try {
        if (connection.getStatus() != 0) {
            std::cout << "Something answers, but not as the service does.\n";
            return 2;
        }
        std::cout << "The service is alive.\n";
    } catch (const OvMEMConnectionException& failure) {
        // Every failure comes as this class, with type code -1.
        std::cout << failure.getMessage() << " (" << failure.getType() << ")\n";
        return 1;
    }
}
