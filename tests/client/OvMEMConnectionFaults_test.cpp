#include <functional>
#include <string>
#include <vector>

#include <xercesc/util/PlatformUtils.hpp>

#include "tests/client/ConnectionTest.h"
#include "tests/client/FaultTable.h"

// Every status that the transport can fail with, at every call of every
// operation that can answer with it.

namespace OvMemTest {

namespace {

enum class Operation {
    registering,
    unregistering,
    asking,
    getting,
    putting,
    checking
};

const char* const operationNames[] = {"registerClient",   "unregisterClient",
                                      "getSharedClients", "getEvents",
                                      "putEvents",        "getStatus"};

// Where an exchange fails: how to script it, and how many of its calls are
// made, the failing one included.
struct Site {
    std::string name;
    std::function<void(ScriptedTransport&, int status)> script;
    std::size_t calls;
};

const Site sites[] = {
    {"Headers", [](ScriptedTransport& t, int status) { t.sendNoAck(status); },
     1},
    {"Handshake", [](ScriptedTransport& t, int status) { t.receive(status); },
     3},
    {"Chunk",
     [](ScriptedTransport& t, int status) {
         t.receive(19).sendNoAck(1).sendNoAck(status);
     },
     4},
    {"EndMark",
     [](ScriptedTransport& t, int status) {
         t.receive(19).sendEof(0).sendEof(status);
     },
     5},
    {"SecondHandshake",
     [](ScriptedTransport& t, int status) { t.receive(19).receive(status); },
     6},
    {"Reply",
     [](ScriptedTransport& t, int status) {
         t.receive(19).receive(20).receive(status);
     },
     7},
    {"ReplyAfterAChunk",
     [](ScriptedTransport& t, int status) {
         t.receive(19).receive(20).chunk("partial").receive(status);
     },
     8},
};

const Site startSite{
    "Start", [](ScriptedTransport& t, int status) { t.init(status); }, 0};

struct ConnectionCase {
    Operation operation;
    Site site;
    Fault fault;
    bool inSecondExchange;  // of getEvents
};

std::vector<ConnectionCase> connectionCases() {
    std::vector<ConnectionCase> result;
    for (const auto operation :
         {Operation::registering, Operation::unregistering, Operation::asking,
          Operation::getting, Operation::putting, Operation::checking}) {
        for (const Fault& fault : faultTable) {
            result.push_back({operation, startSite, fault, false});
            for (const Site& site : sites) {
                const bool ends =
                    fault.status == -1 && site.name.starts_with("Reply");
                if (fault.status > 0 || ends) {
                    continue;
                }
                result.push_back({operation, site, fault, false});
                if (operation == Operation::getting) {
                    result.push_back({operation, site, fault, true});
                }
            }
        }
    }
    return result;
}

std::string connectionCaseName(
    const ::testing::TestParamInfo<ConnectionCase>& info) {
    const auto& [operation, site, fault, second] = info.param;
    const std::string status = std::to_string(fault.status);
    return std::string(operationNames[static_cast<int>(operation)]) +
           (second ? "InItsSecondExchange" : "") + site.name + "Answers" +
           (fault.status < 0 ? "Minus" + status.substr(1) : status);
}

}  // namespace

class OvMEMConnectionFaults
    : public ConnectionTest,
      public ::testing::WithParamInterface<ConnectionCase> {
protected:
    // Keeps the XML platform, which takes longer to start than all the rest.
    static void SetUpTestSuite() { xercesc::XMLPlatformUtils::Initialize(); }
    static void TearDownTestSuite() { xercesc::XMLPlatformUtils::Terminate(); }

    void run() {
        switch (GetParam().operation) {
            case Operation::registering:
                connection.registerClient(server, client, locale, shared);
                break;
            case Operation::unregistering:
                connection.unregisterClient(shared);
                break;
            case Operation::asking:
                connection.getSharedClients(shared);
                break;
            case Operation::getting:
                connection.getEvents(events, shared, correlation);
                break;
            case Operation::putting:
                connection.putEvents(events, shared, correlation);
                break;
            case Operation::checking:
                connection.getStatus();
        }
    }

    const Exchange& exchange() const {
        static const Exchange put = putting("the events of before");
        const Exchange* const exchanges[] = {
            &registering, &unregistering, &askingWhoShares,
            &fetching,    &put,           &checking};
        return *exchanges[static_cast<int>(GetParam().operation)];
    }

    // The calls up to the failing one, and the question what it was.
    Calls expectedCalls() const {
        const auto& [operation, site, fault, second] = GetParam();
        Calls calls;
        if (site.name == startSite.name) {
            calls.push_back(start);
        } else if (second) {
            calls = askingWhoShares.calls();
            calls.resize(site.calls);
            calls = fetching.calls() + calls;
        } else {
            calls = exchange().calls();
            calls.resize(site.calls);
        }
        calls.push_back("OvMem_GetLastError()");
        return calls;
    }

    Thrown expectedThrown() const {
        switch (GetParam().operation) {
            case Operation::unregistering:
                return {"Exception", 0, "what went wrong"};
            case Operation::checking:
                return {"OvMEMConnectionException", -1,
                        "OvMEM Connection failed"};
            default:
                return {GetParam().fault.type, 0, "what went wrong"};
        }
    }
};

TEST_P(OvMEMConnectionFaults, AreThrownAndLeaveWhatIsPromised) {
    const auto& [operation, site, fault, second] = GetParam();
    const bool starts = site.name == startSite.name;
    identify();
    ovMemStartedOf(connection) = !starts;
    if (second) {
        answer("new events");
        transport.sendNoAck(1).sendNoAck(1).sendEof(0).sendEof(0);
    }
    site.script(transport, fault.status);
    transport.lastError(0, "what went wrong");

    EXPECT_EQ(thrownBy([this] { run(); }), expectedThrown());

    EXPECT_EQ(takeTransportCalls(), expectedCalls());
    EXPECT_EQ(ovMemStartedOf(connection), !starts);
    EXPECT_EQ(identity(), operation == Operation::unregistering
                              ? (Texts{"", "", "en_GB"})
                              : (Texts{"plant", "pump", "en_GB"}));
    EXPECT_EQ(events, second ? "new events" : "the events of before");
    EXPECT_EQ(shared, second ? Texts{} : Texts{"before"});
    EXPECT_EQ((Texts{server, client, locale, correlation}),
              (Texts{"plant", "pump", "en_GB", "night-run"}));
}

INSTANTIATE_TEST_SUITE_P(EveryStatusAtEveryCall, OvMEMConnectionFaults,
                         ::testing::ValuesIn(connectionCases()),
                         connectionCaseName);

}  // namespace OvMemTest
