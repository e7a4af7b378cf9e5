#include "tests/faults/FaultCases.h"

#include <algorithm>
#include <climits>
#include <set>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/faults/ReplyDocument.h"
#include "tests/support/PrivateAccess.h"

namespace OvMemTest {

namespace {

using Connection = FaultyOperation::Connection;
using Receives = std::vector<Received>;

// What is written during a handshake is no part of the reply.
const std::string blanks(20, ' ');
const Received sendBody{19, blanks.substr(1)};
const Received sendNoBody{20, blanks};
const Received end{-1, {}};
const Received goOn{0, {}};

Received chunk(const std::string& bytes) {
    return {static_cast<std::int32_t>(bytes.size()), bytes};
}

Receives operator+(Receives first, const Receives& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

const Receives echo{chunk("OvMEM Status check"), end};
const Receives events{chunk(std::string("one\0event", 9)), chunk("another"),
                      end};
const Receives bodyAsked{sendBody, sendNoBody};

const ConnectionState fresh{};
const ConnectionState registered{"server", "client", "de_DE"};
const ConnectionState started{"server", "client", "", true};

CallerValues with(const std::string& text) {
    CallerValues caller;
    caller.events = text;
    return caller;
}

// Two chunks, the second one full: a third read finds the end.
const CallerValues twoFullChunks = with(std::string(2 * 4098, 'e'));

void singleSend(Connection&, CallerValues& caller) {
    OvMEMRequest request;
    request.setHeader("Name", "value");
    request.setRequestBody("single body");
    caller.reply = request.sendAndReceive();
}

void registerClient(Connection& connection, CallerValues& caller) {
    connection.registerClient(caller.serverId, caller.clientId, caller.locale,
                              caller.sharedClients);
}

void unregisterClient(Connection& connection, CallerValues& caller) {
    connection.unregisterClient(caller.sharedClients);
}

void getSharedClients(Connection& connection, CallerValues& caller) {
    connection.getSharedClients(caller.sharedClients);
}

void getEvents(Connection& connection, CallerValues& caller) {
    connection.getEvents(caller.events, caller.sharedClients,
                         caller.correlation);
}

void putEvents(Connection& connection, CallerValues& caller) {
    connection.putEvents(caller.events, caller.sharedClients,
                         caller.correlation);
}

void getStatus(Connection& connection, CallerValues& caller) {
    caller.status = connection.getStatus();
}

std::vector<FaultyOperation> makeOperations() {
    using Model = ClientModel;
    const CallerValues caller;
    const Receives document{chunk(firstReplyChunk()), chunk(secondReplyChunk()),
                            end};
    const auto start = [](Connection& connection, CallerValues&) {
        initOvMem(connection);
    };
    const auto stop = [](Connection& connection, CallerValues&) {
        termOvMem(connection);
    };
    const auto modelStart = [](Model& model, CallerValues&) {
        model.initOvMem();
    };
    const auto modelStop = [](Model& model, CallerValues&) {
        model.termOvMem();
    };
    const Receives asked = bodyAsked + document;
    const Receives notAsked = Receives{sendNoBody} + document;
    const Receives zero = Receives{goOn} + document;
    const Receives twice = Receives{sendBody} + asked;
    return {
        {"registerClient", asked, fresh, caller, &Model::registerClient,
         registerClient},
        {"registerClientWithoutBody", notAsked, started, caller,
         &Model::registerClient, registerClient},
        {"unregisterClient", asked, registered, caller,
         &Model::unregisterClient, unregisterClient},
        {"unregisterClientWithoutBody", zero, started, caller,
         &Model::unregisterClient, unregisterClient},
        {"getSharedClients", asked, registered, caller,
         &Model::getSharedClients, getSharedClients},
        {"getSharedClientsWithoutBody", notAsked, started, caller,
         &Model::getSharedClients, getSharedClients},
        {"getEvents", bodyAsked + events + asked, registered, caller,
         &Model::getEvents, getEvents},
        {"getEventsWithoutBody", Receives{goOn} + events + notAsked, started,
         caller, &Model::getEvents, getEvents},
        {"putEvents", asked, registered, with("some events"), &Model::putEvents,
         putEvents},
        {"putEventsInChunks", twice, started, twoFullChunks, &Model::putEvents,
         putEvents},
        {"putNoEvents", asked, started, with(""), &Model::putEvents, putEvents},
        {"getStatus", bodyAsked + echo, registered, caller, &Model::getStatus,
         getStatus},
        {"getStatusWithoutBody", Receives{sendNoBody} + echo, fresh, caller,
         &Model::getStatus, getStatus},
        {"singleSend", events, fresh, caller, &Model::singleSend, singleSend},
        {"initOvMem", {}, registered, caller, modelStart, start},
        {"termOvMem", {}, started, caller, modelStop, stop},
    };
}

}  // namespace

const std::vector<FaultyOperation>& faultyOperations() {
    static const std::vector<FaultyOperation> operations = makeOperations();
    return operations;
}

const std::vector<std::int32_t>& faultyStatuses() {
    static const std::vector<std::int32_t> statuses = [] {
        std::set<std::int32_t> all{0,           -1,          INT_MIN, INT_MAX,
                                   INT_MIN + 1, INT_MAX - 1, 16384,   16385};
        for (const std::int32_t known :
             {1001, 1002, 1003, -751, -3099, -3017, -3016, -3010, -3009, -3001,
              -2999, -2998, -2997, -2996, -3002, 19, 20, -1}) {
            all.insert({known - 1, known, known + 1});
        }
        all.insert(1);
        return std::vector<std::int32_t>(all.begin(), all.end());
    }();
    return statuses;
}

const std::vector<LastError>& lastErrors() {
    static const std::vector<LastError> answers{
        {0, "what went wrong"}, {0, {}}, {-5, "what went wrong"}, {-5, {}}};
    return answers;
}

Expectation expectationOf(const FaultyOperation& operation,
                          std::optional<TransportFault> fault,
                          const LastError& lastError) {
    Expectation expected{ModelTransport(operation.receives, fault, lastError),
                         operation.state,
                         operation.caller,
                         nothingThrown,
                         {}};
    ClientModel model(expected.transport, expected.state);
    try {
        expected.thrown =
            thrownByModel([&] { operation.model(model, expected.caller); });
    } catch (const NeverEnds& endless) {
        expected.endlessStatus = endless.status;
    }
    return expected;
}

std::size_t positionsOf(const FaultyOperation& operation) {
    return expectationOf(operation, {}, lastErrors().front())
        .transport.positions();
}

}  // namespace OvMemTest
