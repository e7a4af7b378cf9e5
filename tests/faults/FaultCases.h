#ifndef TESTS_FAULTS_FAULTCASES_H
#define TESTS_FAULTS_FAULTCASES_H

#include <functional>
#include <string>
#include <vector>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "tests/faults/ClientModel.h"

namespace OvMemTest {

// One operation with a transport that answers it in one way, on a connection
// that begins in one state: as the model does it and as the library does it.
struct FaultyOperation {
    using Connection =
        Orvane::Net::OvModelEventManager::Client::OvMEMConnection;

    std::string name;
    std::vector<Received> receives;
    ConnectionState state;
    CallerValues caller;
    std::function<void(ClientModel&, CallerValues&)> model;
    std::function<void(Connection&, CallerValues&)> library;
};

// Every operation; those that stream a body twice, with a service that asks
// for the body and with one that does not.
const std::vector<FaultyOperation>& faultyOperations();

// Every status with a meaning, its neighbours, and the borders of the type.
const std::vector<std::int32_t>& faultyStatuses();

// What OvMem_GetLastError can answer: with or without a text, well or not.
const std::vector<LastError>& lastErrors();

// How the model ends, and what it has done until then.
struct Expectation {
    ModelTransport transport;
    ConnectionState state;
    CallerValues caller;
    Thrown thrown;
    std::optional<int> endlessStatus;  // of a handshake without an end
};

Expectation expectationOf(const FaultyOperation& operation,
                          std::optional<TransportFault> fault,
                          const LastError& lastError);

// How many calls of the transport the operation makes when nothing fails.
std::size_t positionsOf(const FaultyOperation& operation);

}  // namespace OvMemTest

#endif
