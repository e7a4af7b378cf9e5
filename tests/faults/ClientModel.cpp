#include "tests/faults/ClientModel.h"

#include <map>

#include "tests/faults/ReplyDocument.h"
#include "tests/support/Quoted.h"

namespace OvMemTest {

namespace {

const std::map<int, std::string> classOfStatus{
    {-3099, "OvMEMProtocolException"},   {-3017, "OvMEMProtocolException"},
    {-3016, "OvMEMRuntimeException"},    {-3010, "OvMEMRuntimeException"},
    {-3009, "OvMEMRuntimeException"},    {-3001, "OvMEMConnectionException"},
    {-2999, "OvMEMConnectionException"}, {-2998, "OvMEMConnectionException"},
    {-2997, "OvMEMConnectionException"}, {-2996, "OvMEMConnectionException"},
    {-751, "OvMEMProtocolException"},    {1001, "OvMEMConnectionException"},
    {1002, "OvMEMProtocolException"},    {1003, "OvMEMRuntimeException"}};

bool ofClientFamily(const Thrown& thrown) {
    return thrown.type.starts_with("OvMEM");
}

void append(std::vector<std::string>& target,
            const std::vector<std::string>& source) {
    target.insert(target.end(), source.begin(), source.end());
}

}  // namespace

void ClientModel::registerClient(CallerValues& caller) {
    state.serverId = caller.serverId;
    state.clientId = caller.clientId;
    state.locale = caller.locale;
    const std::string reply =
        stream("registerClient", "OvMEMConnection.registerClient",
               "OvMEM register client");
    append(caller.sharedClients, identifiersIn(reply));
}

void ClientModel::unregisterClient(CallerValues& caller) {
    try {
        const std::string reply =
            stream("unregisterClient", "OvMEMConnection.unregisterClient",
                   "OvMEM unregister client");
        append(caller.sharedClients, identifiersIn(reply));
    } catch (Thrown thrown) {
        if (!ofClientFamily(thrown)) {
            throw;
        }
        state.serverId.clear();
        state.clientId.clear();
        throw Thrown{"Exception", thrown.code, thrown.message};
    }
    state.serverId.clear();
    state.clientId.clear();
}

void ClientModel::getSharedClients(CallerValues& caller) {
    const std::string reply =
        stream("getSharedClients", "OvMEMConnection.getSharedClients",
               "OvMEM getClients Operation");
    append(caller.sharedClients, identifiersIn(reply));
}

void ClientModel::getEvents(CallerValues& caller) {
    caller.events =
        stream("getEvents", caller.correlation, "Get Events Request");
    caller.sharedClients.clear();
    getSharedClients(caller);
}

void ClientModel::putEvents(CallerValues& caller) {
    const std::string reply =
        stream("putEvents", caller.correlation, caller.events);
    append(caller.sharedClients, identifiersIn(reply));
}

void ClientModel::getStatus(CallerValues& caller) {
    try {
        const std::string reply =
            stream("getStatus", "OvMEMConnection.getStatus",
                   "OvMEM Status check", false);
        caller.status = reply == "OvMEM Status check" ? 0 : -2;
    } catch (const Thrown& thrown) {
        if (!ofClientFamily(thrown)) {
            throw;
        }
        throw Thrown{"OvMEMConnectionException", -1, "OvMEM Connection failed"};
    }
}

void ClientModel::initOvMem() {
    if (!state.ovMemStarted) {
        const int status = transport.call("OvMem_Init", "malloc, free");
        if (status != 0) {
            fail(status);
        }
        state.ovMemStarted = true;
    }
}

void ClientModel::termOvMem() {
    if (state.ovMemStarted) {
        failIfNegative(transport.call("OvMem_Term"));
        state.ovMemStarted = false;
    }
}

void ClientModel::singleSend(CallerValues& caller) {
    failIfNegative(transport.call("OvMem_Send",
                                  inQuotes("Name=value\r\n\r\nsingle body")));
    failIfNegative(transport.call("OvMem_SendEOF"));
    caller.reply = receiveReply();
}

std::string ClientModel::stream(const std::string& operation,
                                const std::string& correlation,
                                const std::string& body, bool withIdentity) {
    initOvMem();
    for (const char* getter :
         {"get", "getRequestID", "getSessionID", "getUserAction"}) {
        transport.note(std::string("LogCorrelation::") + getter + "()");
    }
    const std::string block =
        "Caller-Action=a1\r\n" +
        (withIdentity ? "Client-ID=" + state.clientId + "\r\n" : "") +
        (state.locale.empty() ? "" : "Locale=" + state.locale + "\r\n") +
        "Log-Correlation-ID=" + correlation +
        "\r\nOperation-Name=" + operation + "\r\nRequest-ID=r1\r\n" +
        (withIdentity ? "Server-ID=" + state.serverId + "\r\n" : "") +
        "Service-Name=OvMEMRequest\r\nSession-ID=s1\r\n\r\n";
    failIfNegative(transport.call("OvMem_SendNoAck", inQuotes(block)));
    transport.call("OvMem_SendEOF");

    std::size_t sent = 0;
    bool atEnd = false;
    int status = transport.receive().status;
    while (status == 19) {
        failIfNegative(sendBody(body, sent, atEnd));
        failIfNegative(transport.call("OvMem_SendEOF"));
        status = transport.receive().status;
    }
    if (status > 0 && status != 20) {
        throw NeverEnds{status};
    }
    failIfNegative(status);
    return receiveReply();
}

// One pass over the body; answers with the status of the last chunk. A read
// that delivers less than it was asked for has reached the end.
int ClientModel::sendBody(const std::string& body, std::size_t& sent,
                          bool& atEnd) {
    int status = 0;
    while (!atEnd) {
        const std::string chunk = body.substr(sent, 4098);
        sent += chunk.size();
        atEnd = chunk.size() < 4098;
        if (!chunk.empty()) {
            status = transport.call("OvMem_SendNoAck", inQuotes(chunk));
            if (status <= 0) {
                break;
            }
        }
    }
    return status;
}

std::string ClientModel::receiveReply() {
    std::string reply;
    for (;;) {
        const Received answer = transport.receive();
        if (answer.status == -1) {
            transport.call("OvMem_Complete");
            return reply;
        }
        failIfNegative(answer.status);
        if (answer.status > 16384) {
            throw Thrown{"OvMEMProtocolException", 0,
                         "Reply chunk exceeds the receive buffer."};
        }
        reply += answer.bytes;
    }
}

void ClientModel::fail(int status) {
    const LastError error = transport.lastError();
    std::string message;
    if (!error.text) {
        message = error.status == 0 ? "No error message received"
                                    : "Could not retrieve last error message.";
    } else if (error.status == 0) {
        message = *error.text;
    }
    const auto known = classOfStatus.find(status);
    throw Thrown{known == classOfStatus.end() ? "OvMEMUnrecognisedException"
                                              : known->second,
                 0, message};
}

void ClientModel::failIfNegative(int status) {
    if (status < 0) {
        fail(status);
    }
}

Thrown thrownByModel(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const Thrown& thrown) {
        return thrown;
    }
    return nothingThrown;
}

}  // namespace OvMemTest
