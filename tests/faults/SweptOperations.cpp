#include "tests/faults/SweptOperations.h"

#include <utility>

namespace OvMemTest {

namespace {

// Longer than what fits into a std::string itself.
const ConnectionState registered{"a server of a longer name",
                                 "a client of a longer name",
                                 "en_GB.UTF-8@a-longer-name", true};
const ConnectionState unregistered{"", "", registered.locale, true};

struct Reply {
    std::string size;
    std::vector<std::string> ids;
};

std::vector<std::string> identifiers(std::size_t count, std::size_t length) {
    std::vector<std::string> ids;
    for (std::size_t i = 0; i < count; ++i) {
        std::string id = "client-" + std::to_string(i) + "-";
        id.resize(length, 'x');
        ids.push_back(id);
    }
    return ids;
}

std::string documentOf(const std::vector<std::string>& ids) {
    std::string document =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<c:list "
        "xmlns:c=\"urn:c\">\n";
    for (const std::string& id : ids) {
        document +=
            "  <c:sharedClients kind=\"one\">" + id + "</c:sharedClients>\n";
    }
    return document + "</c:list>\n";
}

CallerValues applicationValues() {
    CallerValues caller;
    caller.serverId = registered.serverId;
    caller.clientId = registered.clientId;
    caller.locale = registered.locale;
    caller.events = "events that an application had from the call before";
    caller.correlation = "a correlation identifier of some length";
    caller.sharedClients = {"an identifier that was there before the call"};
    return caller;
}

CallerValues appended(CallerValues caller,
                      const std::vector<std::string>& ids) {
    caller.sharedClients.insert(caller.sharedClients.end(), ids.begin(),
                                ids.end());
    return caller;
}

void handshake(ScriptedTransport& transport) {
    transport.receive(19).receive(20);
}

SweptOperation operation(
    std::string name, std::string reply,
    std::function<void(OvMEMConnection&, CallerValues&)> run) {
    const CallerValues caller = applicationValues();
    return {std::move(name),
            [reply](ScriptedTransport& transport) {
                handshake(transport);
                transport.reply(reply);
            },
            registered,
            caller,
            std::move(run),
            nothingThrown,
            registered,
            caller};
}

void registerClient(OvMEMConnection& connection, CallerValues& caller) {
    connection.registerClient(caller.serverId, caller.clientId, caller.locale,
                              caller.sharedClients);
}

void getEvents(OvMEMConnection& connection, CallerValues& caller) {
    connection.getEvents(caller.events, caller.sharedClients,
                         caller.correlation);
}

SweptOperation registering(const Reply& reply) {
    auto swept = operation("registerClient" + reply.size, documentOf(reply.ids),
                           registerClient);
    swept.state = ConnectionState{};
    swept.callerAfter = appended(swept.caller, reply.ids);
    return swept;
}

SweptOperation unregistering(const Reply& reply) {
    auto swept =
        operation("unregisterClient" + reply.size, documentOf(reply.ids),
                  [](OvMEMConnection& connection, CallerValues& caller) {
                      connection.unregisterClient(caller.sharedClients);
                  });
    swept.stateAfter = unregistered;
    swept.callerAfter = appended(swept.caller, reply.ids);
    return swept;
}

SweptOperation sharing(const Reply& reply) {
    auto swept =
        operation("getSharedClients" + reply.size, documentOf(reply.ids),
                  [](OvMEMConnection& connection, CallerValues& caller) {
                      connection.getSharedClients(caller.sharedClients);
                  });
    swept.callerAfter = appended(swept.caller, reply.ids);
    return swept;
}

SweptOperation putting(const Reply& reply, std::size_t eventsSize) {
    auto swept =
        operation("putEvents" + reply.size, documentOf(reply.ids),
                  [](OvMEMConnection& connection, CallerValues& caller) {
                      connection.putEvents(caller.events, caller.sharedClients,
                                           caller.correlation);
                  });
    swept.caller.events = std::string(eventsSize, 'e');
    swept.callerAfter = appended(swept.caller, reply.ids);
    return swept;
}

SweptOperation getting(const Reply& reply, std::size_t eventsSize) {
    const std::string events(eventsSize, 'e');
    auto swept = operation("getEvents" + reply.size, "", getEvents);
    swept.script = [events, ids = reply.ids](ScriptedTransport& transport) {
        handshake(transport);
        transport.reply(events);
        handshake(transport);
        transport.reply(documentOf(ids));
    };
    swept.callerAfter.events = events;
    swept.callerAfter.sharedClients = reply.ids;
    return swept;
}

SweptOperation checking(const std::string& name, const std::string& reply,
                        int status) {
    auto swept =
        operation("getStatus" + name, reply,
                  [](OvMEMConnection& connection, CallerValues& caller) {
                      caller.status = connection.getStatus();
                  });
    swept.callerAfter.status = status;
    return swept;
}

// Operations that end as an exception in any case.
std::vector<SweptOperation> failing() {
    const std::string text =
        "what went wrong, in a text that does not fit into a small string";
    auto refused = operation("registerClientRefused", "", registerClient);
    refused.script = [text](ScriptedTransport& transport) {
        transport.receive(-3017).lastError(0, text);
    };
    refused.state = ConnectionState{};
    refused.thrown = {"OvMEMProtocolException", 0, text};

    auto unstarted = operation("getEventsUnstarted", "", getEvents);
    unstarted.script = [text](ScriptedTransport& transport) {
        transport.init(1001).lastError(0, text);
    };
    unstarted.state.ovMemStarted = false;
    unstarted.stateAfter.ovMemStarted = false;
    unstarted.thrown = {"OvMEMConnectionException", 0, text};

    auto down = checking("Down", "", applicationValues().status);
    down.script = refused.script;
    down.thrown = {"OvMEMConnectionException", -1, "OvMEM Connection failed"};

    auto unregistering =
        operation("unregisterClientRefused", "",
                  [](OvMEMConnection& connection, CallerValues& caller) {
                      connection.unregisterClient(caller.sharedClients);
                  });
    unregistering.script = refused.script;
    unregistering.stateAfter = unregistered;
    unregistering.thrown = {"Exception", 0, text};

    auto unknown =
        operation("getSharedClientsUnregistered", "",
                  [](OvMEMConnection& connection, CallerValues& caller) {
                      connection.getSharedClients(caller.sharedClients);
                  });
    unknown.script = [](ScriptedTransport&) {};
    unknown.state = unregistered;
    unknown.stateAfter = unregistered;
    unknown.thrown = {"OvMEMProtocolException*", -2,
                      "Client not Registered with Model Event Manager"};

    auto malformed =
        operation("registerClientMalformed",
                  "<list><sharedClients>an identifier</sharedClients></lost>",
                  registerClient);
    malformed.state = ConnectionState{};
    malformed.thrown = {"DomException", 0,
                        "Fatal Error: parsing: From-String: line 1, char 53\n"
                        "Message: expected end of tag 'list'\n"};

    auto unexpected = operation(
        "registerClientUnexpected",
        "<list><anElementOfAnotherNameAltogether/></list>", registerClient);
    unexpected.state = ConnectionState{};
    unexpected.thrown = {
        "DomException", 0,
        "Unexpected node name: anElementOfAnotherNameAltogether"};
    return {refused, unstarted, down,      unregistering,
            unknown, malformed, unexpected};
}

const Reply large{"Large", identifiers(10, 4000)};

std::vector<SweptOperation> exchanging(const Reply& reply,
                                       std::size_t eventsSize) {
    return {registering(reply), unregistering(reply), sharing(reply),
            getting(reply, eventsSize), putting(reply, eventsSize)};
}

}  // namespace

std::vector<SweptOperation> sweptOperations() {
    std::vector<SweptOperation> all{
        checking("", "OvMEM Status check", 0),
        checking("OfALongReply", std::string(40000, 'x'), -2),
    };
    const auto add = [&all](const std::vector<SweptOperation>& more) {
        all.insert(all.end(), more.begin(), more.end());
    };
    add(exchanging({"Small", {"a client of a longer name"}}, 30));
    add({registering(large), getting(large, 40000)});
    add(failing());
    return all;
}

std::vector<SweptOperation> longSweptOperations() {
    std::vector<SweptOperation> all =
        exchanging({"Medium", identifiers(12, 200)}, 10000);
    const auto add = [&all](const std::vector<SweptOperation>& more) {
        all.insert(all.end(), more.begin(), more.end());
    };
    add({unregistering(large), sharing(large), putting(large, 40000)});
    add(exchanging({"Huge", identifiers(120, 150)}, 100000));
    return all;
}

}  // namespace OvMemTest
