#ifndef TESTS_FAULTS_MATRIXCONNECTION_H
#define TESTS_FAULTS_MATRIXCONNECTION_H

#include "tests/faults/ClientModel.h"
#include "tests/support/PrivateAccess.h"

namespace OvMemTest {

// A connection whose state can be set and read, without a call of the
// transport.
class MatrixConnection {
public:
    explicit MatrixConnection(const ConnectionState& state) { bring(state); }

    void bring(const ConnectionState& state) {
        serverIdOf(connection) = state.serverId;
        clientIdOf(connection) = state.clientId;
        localeOf(connection) = state.locale;
        ovMemStartedOf(connection) = state.ovMemStarted;
        reservedOf(connection) = state.reserved;
    }

    ConnectionState state() {
        return {serverIdOf(connection), clientIdOf(connection),
                localeOf(connection), ovMemStartedOf(connection),
                reservedOf(connection)};
    }

    OvMEMConnection& get() { return connection; }

private:
    OvMEMConnection connection;
};

}  // namespace OvMemTest

#endif
