#ifndef TESTS_FAULTS_SWEPTOPERATIONS_H
#define TESTS_FAULTS_SWEPTOPERATIONS_H

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/ClientModel.h"
#include "tests/support/PrivateAccess.h"
#include "tests/support/ScriptedTransport.h"

namespace OvMemTest {

// One operation with a service that answers it in one way, for a heap that
// fails on the way.
struct SweptOperation {
    std::string name;
    std::function<void(ScriptedTransport&)> script;
    ConnectionState state;
    CallerValues caller;
    std::function<void(OvMEMConnection&, CallerValues&)> run;

    // With memory enough.
    Thrown thrown;
    ConnectionState stateAfter;
    CallerValues callerAfter;
};

// Those of every test run: each operation with a small reply, some with one of
// 40 KB, and each way to fail.
std::vector<SweptOperation> sweptOperations();

// The others: replies of 2 KB, 40 KB and 120 identifiers, 100 KB of events.
std::vector<SweptOperation> longSweptOperations();

}  // namespace OvMemTest

#endif
