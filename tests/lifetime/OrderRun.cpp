#include "tests/lifetime/OrderRun.h"

#include <vector>

#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "tests/support/SystemCheck.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

namespace {

const Thrown notInitialised{"DomException", 0,
                            "XML parser platform is not initialised"};
const Thrown panicked{"DomException", 0,
                      "XmlPlatformGuard: the XML library cannot go on: Cannot "
                      "create, lock or unlock a mutex"};
const std::string reply = "<r><sharedClients>valve</sharedClients></r>";

}  // namespace

OrderRun::OrderRun(bool heldByGuard) : startedByGuard(heldByGuard) {
    if (heldByGuard) {
        guard.emplace();
    }
}

std::string OrderRun::complaints(const Order& order) {
    for (const Event& event : order) {
        happen(event);
        lookAtThePlatform();
        if (!complaint.empty()) {
            return complaint + " after: " + inWords({&event, &event + 1});
        }
    }
    return {};
}

void OrderRun::happen(const Event& event) {
    Slot& slot = slots[event.connection];
    switch (event.kind) {
        case Event::Create:
            slot = {std::make_unique<Connection>(), false};
            ready = true;
            break;
        case Event::Copy: {
            const Slot& source = slots[event.source];
            slot = {std::make_unique<Connection>(*source.connection),
                    source.started};
            break;
        }
        case Event::Assign: {
            const Slot& source = slots[event.source];
            *slot.connection = *source.connection;
            slot.started = source.started;
            break;
        }
        case Event::Use:
            use(slot);
            break;
        case Event::Destroy:
            slot.connection.reset();
            ready = false;
            break;
        case Event::EndGuard:
            guard.reset();
            break;
    }
}

// The exchange takes place in any case; what is wanting may be the parser.
void OrderRun::use(Slot& slot) {
    std::string server = "plant";
    std::string client = "pump";
    std::string locale;
    std::vector<std::string> shared;
    platform.transport.receive(19).receive(20).reply(reply);
    const Thrown thrown = thrownBy([&] {
        slot.connection->registerClient(server, client, locale, shared);
    });
    const Calls calls = platform.takeTransportCalls();
    expect(calls.back() == "OvMem_Complete()", "the exchange is not complete");
    expect((calls.front() == "OvMem_Init(malloc, free)") != slot.started,
           "the transport is not started once");
    slot.started = true;
    if (platformRuns()) {
        expect(thrown == nothingThrown, "thrown: " + thrown.message);
        expect(shared == std::vector<std::string>{"valve"},
               "the reply is not the one that was given");
    } else {
        expect(thrown == notInitialised, "not thrown as documented");
        expect(shared.empty(), "there are identifiers without a parser");
    }
}

void OrderRun::lookAtThePlatform() {
    expect(xmlPlatformRuns() == platformRuns(),
           "the platform is not as it should be");
    startedByGuard = startedByGuard && platformRuns();
    if (startedByGuard) {
        expect(thrownBy([] {
                   xercesc::XMLPlatformUtils::panic(
                       xercesc::PanicHandler::Panic_MutexErr);
               }) == panicked,
               "a panic is not an exception");
    }
}

void OrderRun::expect(bool truth, const std::string& what) {
    if (!truth && complaint.empty()) {
        complaint = what;
    }
}

}  // namespace OvMemTest
