#include "tests/wire/WirePlayer.h"

#include <algorithm>
#include <sstream>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "tests/support/PrivateAccess.h"
#include "tests/support/Quoted.h"
#include "tests/support/ScriptedLogging.h"
#include "tests/support/ScriptedTransport.h"

namespace OvMemTest {

namespace {

std::string show(const std::string& value) {
    return inQuotes(value);
}

std::string show(bool value) {
    return value ? "yes" : "no";
}

std::string show(const std::vector<std::string>& values) {
    std::string result;
    for (const std::string& value : values) {
        result += (result.empty() ? "" : ", ") + inQuotes(value);
    }
    return result.empty() ? "none" : result;
}

std::string show(const std::optional<int>& value) {
    return value ? std::to_string(*value) : "nothing";
}

std::string show(const Thrown& thrown) {
    std::ostringstream text;
    text << thrown;
    return text.str();
}

class WirePlayer {
public:
    explicit WirePlayer(const WireState& before)
        : transport([this](const std::string& what) { say(what); }),
          logging(transport),
          events(before.events),
          clients(before.clients) {
        serverIdOf(connection) = before.server;
        clientIdOf(connection) = before.client;
        localeOf(connection) = before.locale;
        ovMemStartedOf(connection) = before.started;
        correlate(before);
    }

    void play(const WireStep& step) {
        for (const WireCall& call : step.calls) {
            script(call);
        }
        std::optional<int> returned;
        const Thrown thrown =
            thrownBy([&] { returned = run(step.operation, step.arguments); });
        compareCalls(step.calls);
        compare("thrown", step.thrown, thrown);
        compare("returned", step.returned, returned);
        compare("server", step.after.server, serverIdOf(connection));
        compare("client", step.after.client, clientIdOf(connection));
        compare("locale", step.after.locale, localeOf(connection));
        compare("started", step.after.started, ovMemStartedOf(connection));
        compare("clients", step.after.clients, clients);
        compare("events", step.after.events, events);
        transport.verify();
        correlate(step.after);
    }

    std::vector<std::string> differences() const { return said; }

private:
    void say(const std::string& what) { said.push_back(what); }

    void correlate(const WireState& state) {
        logging.requestId = state.requestId;
        logging.sessionId = state.sessionId;
        logging.userAction = state.userAction;
    }

    void script(const WireCall& call) {
        if (call.function == "OvMem_Init") {
            transport.init(call.status);
        } else if (call.function == "OvMem_Term") {
            transport.term(call.status);
        } else if (call.function == "OvMem_Send") {
            transport.send(call.status);
        } else if (call.function == "OvMem_SendNoAck") {
            transport.sendNoAck(call.status);
        } else if (call.function == "OvMem_SendEOF") {
            transport.sendEof(call.status);
        } else if (call.function == "OvMem_Receive") {
            transport.receive(call.status, call.text.value_or(""));
        } else if (call.function == "OvMem_Complete") {
            transport.complete(call.status);
        } else if (call.function == "OvMem_GetLastError") {
            transport.lastError(call.status, call.text);
        } else {
            say("There is no function " + call.function);
        }
    }

    std::optional<int> run(const std::string& operation,
                           std::vector<std::string> arguments) {
        if (operation == "getStatus") {
            return connection.getStatus();
        }
        if (operation == "registerClient") {
            connection.registerClient(arguments[0], arguments[1], arguments[2],
                                      clients);
        } else if (operation == "unregisterClient") {
            connection.unregisterClient(clients);
        } else if (operation == "getSharedClients") {
            connection.getSharedClients(clients);
        } else if (operation == "getEvents") {
            connection.getEvents(events, clients, arguments[0]);
        } else {
            connection.putEvents(arguments[0], clients, arguments[1]);
        }
        return {};
    }

    void compareCalls(const std::vector<WireCall>& expected) {
        auto made = transport.takeCalls();
        std::erase_if(made, [](const std::string& call) {
            return !call.starts_with("OvMem_");
        });
        const std::string none = "no call";
        for (std::size_t at = 0; at < std::max(expected.size(), made.size());
             ++at) {
            const std::string& want =
                at < expected.size() ? expected[at].call : none;
            const std::string& have = at < made.size() ? made[at] : none;
            if (want != have) {
                say("call " + std::to_string(at + 1) + " is\n    " + have +
                    "\n  instead of\n    " + want);
            }
        }
    }

    template <typename Value>
    void compare(const std::string& name, const Value& expected,
                 const Value& actual) {
        if (!(expected == actual)) {
            say(name + " is\n    " + show(actual) + "\n  instead of\n    " +
                show(expected));
        }
    }

    std::vector<std::string> said;
    ScriptedTransport transport;
    ScriptedLogging logging;
    OvMEMConnection connection;
    std::string events;
    std::vector<std::string> clients;
};

}  // namespace

std::vector<std::string> playWireCase(const WireCase& wireCase) {
    WirePlayer player(wireCase.before);
    for (const WireStep& step : wireCase.steps) {
        player.play(step);
    }
    return player.differences();
}

}  // namespace OvMemTest
