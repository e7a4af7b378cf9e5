#ifndef TESTS_FAULTS_CLIENTMODEL_H
#define TESTS_FAULTS_CLIENTMODEL_H

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/ModelTransport.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

// What an application holds and hands over.
struct CallerValues {
    std::string serverId = "server";
    std::string clientId = "client";
    std::string locale = "de_DE";
    std::string events = "events";
    std::string correlation = "correlation";
    std::vector<std::string> sharedClients{"kept"};
    int status = 77;    // result of getStatus
    std::string reply;  // result of a bare request

    bool operator==(const CallerValues&) const = default;
};

// The state of a connection.
struct ConnectionState {
    std::string serverId;
    std::string clientId;
    std::string locale;
    bool ovMemStarted = false;
    bool reserved = false;

    bool operator==(const ConnectionState&) const = default;
};

// Thrown by the model where the client would go on for ever.
struct NeverEnds {
    int status;  // of the handshake
};

// What the client has to do, in the plainest words: no class, constant or table
// of the library is used. Each operation throws a Thrown in place of what the
// client throws.
class ClientModel {
public:
    ClientModel(ModelTransport& modelTransport,
                ConnectionState& connectionState)
        : transport(modelTransport), state(connectionState) {}

    void registerClient(CallerValues& caller);
    void unregisterClient(CallerValues& caller);
    void getSharedClients(CallerValues& caller);
    void getEvents(CallerValues& caller);
    void putEvents(CallerValues& caller);
    void getStatus(CallerValues& caller);
    void initOvMem();
    void termOvMem();

    // A request of one header, Name=value, and the body "single body".
    void singleSend(CallerValues& caller);

private:
    std::string stream(const std::string& operation,
                       const std::string& correlation, const std::string& body,
                       bool withIdentity = true);
    int sendBody(const std::string& body, std::size_t& sent, bool& atEnd);
    std::string receiveReply();
    [[noreturn]] void fail(int status);
    void failIfNegative(int status);

    ModelTransport& transport;
    ConnectionState& state;
};

// Runs an operation of the model.
Thrown thrownByModel(const std::function<void()>& operation);

}  // namespace OvMemTest

#endif
