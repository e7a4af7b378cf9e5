#ifndef TESTS_CLIENT_CONNECTIONTEST_H
#define TESTS_CLIENT_CONNECTIONTEST_H

#include <string>
#include <vector>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "tests/support/PrivateAccess.h"
#include "tests/support/Quoted.h"
#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

using Texts = std::vector<std::string>;

const Thrown notRegistered{"OvMEMProtocolException", -2,
                           "Client not Registered with Model Event Manager"};
const Thrown notRegisteredByPointer{notRegistered.type + "*",
                                    notRegistered.code, notRegistered.message};

// The calls of one exchange as the connection makes it: the service asks for
// the body once, and the reply fits one chunk.
struct Exchange {
    std::string operation;
    std::string correlation;
    std::string body;
    // The lines of the header block that not every request has, whole.
    std::string clientLine = "Client-ID=pump\r\n";
    std::string localeLine = "Locale=en_GB\r\n";
    std::string serverLine = "Server-ID=plant\r\n";

    std::string headers() const {
        return "OvMem_SendNoAck(" +
               inQuotes("Caller-Action=a1\r\n" + clientLine + localeLine +
                        "Log-Correlation-ID=" + correlation +
                        "\r\nOperation-Name=" + operation +
                        "\r\nRequest-ID=r1\r\n" + serverLine +
                        "Service-Name=OvMEMRequest\r\n"
                        "Session-ID=s1\r\n\r\n") +
               ")";
    }

    Calls calls() const {
        Calls all{headers(), "OvMem_SendEOF()", "OvMem_Receive()"};
        if (!body.empty()) {
            all.push_back("OvMem_SendNoAck(" + inQuotes(body) + ")");
        }
        all.insert(all.end(),
                   {"OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Receive()",
                    "OvMem_Receive()", "OvMem_Complete()"});
        return all;
    }
};

inline Calls operator+(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// A test of one connection, with variables for all arguments.
class ConnectionTest : public ScriptedPlatformTest {
protected:
    const std::string start = "OvMem_Init(malloc, free)";
    const Exchange registering{"registerClient",
                               "OvMEMConnection.registerClient",
                               "OvMEM register client"};
    const Exchange unregistering{"unregisterClient",
                                 "OvMEMConnection.unregisterClient",
                                 "OvMEM unregister client"};
    const Exchange askingWhoShares{"getSharedClients",
                                   "OvMEMConnection.getSharedClients",
                                   "OvMEM getClients Operation"};
    const Exchange fetching{"getEvents", "night-run", "Get Events Request"};
    const Exchange checking{"getStatus",          "OvMEMConnection.getStatus",
                            "OvMEM Status check", "",
                            "Locale=en_GB\r\n",   ""};

    Exchange putting(const std::string& body) const {
        return {"putEvents", "night-run", body};
    }

    // Makes the connection one that is registered and has started its
    // transport.
    void identify() {
        serverIdOf(connection) = server;
        clientIdOf(connection) = client;
        localeOf(connection) = locale;
        ovMemStartedOf(connection) = true;
    }

    // Scripts one exchange that ends with this reply.
    void answer(const std::string& reply) {
        transport.receive(19).receive(20).reply(reply);
    }

    static std::string listing(const Texts& identifiers) {
        std::string xml = "<clients>";
        for (const std::string& identifier : identifiers) {
            xml += "<sharedClients>" + identifier + "</sharedClients>";
        }
        return xml + "</clients>";
    }

    // Server, client and locale as the connection holds them.
    Texts identity() {
        return {serverIdOf(connection), clientIdOf(connection),
                localeOf(connection)};
    }

    OvMEMConnection connection;
    std::string server = "plant";
    std::string client = "pump";
    std::string locale = "en_GB";
    std::string events = "the events of before";
    std::string correlation = "night-run";
    Texts shared{"before"};
};

}  // namespace OvMemTest

#endif
