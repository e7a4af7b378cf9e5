// Does a small piece of work with the library, over the store in OVMEM_STORE,
// and writes a point to standard output for each step that was answered.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <OvMemCppBinding/client/OvMEMConnection.h>
#include <unistd.h>

#include "tests/crash/Work.h"

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using OvMemTest::Step;

namespace {

using Connections = std::map<std::string, std::unique_ptr<OvMEMConnection>>;

void carryOut(const Step& step, Connections& connections) {
    auto& connection = connections[step.client];
    if (!connection) {
        connection = std::make_unique<OvMEMConnection>();
    }
    std::string server = "plant", client = step.client, locale;
    std::string events = step.text, correlation = "work";
    std::vector<std::string> others;
    switch (step.kind) {
        case Step::Kind::join:
            connection->registerClient(server, client, locale, others);
            break;
        case Step::Kind::leave:
            connection->unregisterClient(others);
            break;
        case Step::Kind::put:
            connection->putEvents(events, others, correlation);
            break;
        case Step::Kind::get:
            connection->getEvents(events, others, correlation);
            break;
        case Step::Kind::close:
            connections.clear();
            break;
    }
}

}  // namespace

int main() {
    Connections connections;
    for (const Step& step : OvMemTest::smallWork()) {
        carryOut(step, connections);
        if (::write(STDOUT_FILENO, ".", 1) != 1) {
            return 1;
        }
    }
}
