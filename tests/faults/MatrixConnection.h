#ifndef TESTS_FAULTS_MATRIXCONNECTION_H
#define TESTS_FAULTS_MATRIXCONNECTION_H

#include "tests/faults/ClientModel.h"
#include "tests/support/PrivateAccess.h"

namespace OvMemTest {

// A connection brought into a state, without a call of the transport.
class MatrixConnection {
public:
    explicit MatrixConnection(const ConnectionState& state) {
        serverIdOf(connection) = state.serverId;
        clientIdOf(connection) = state.clientId;
        localeOf(connection) = state.locale;
        ovMemStartedOf(connection) = state.ovMemStarted;
        reservedOf(connection) = state.reserved;
    }

    OvMEMConnection& get() { return connection; }

    ConnectionState state() {
        return {serverIdOf(connection), clientIdOf(connection),
                localeOf(connection), ovMemStartedOf(connection),
                reservedOf(connection)};
    }

private:
    OvMEMConnection connection;
};

}  // namespace OvMemTest

#endif
