#ifndef TESTS_WIRE_WIRECASE_H
#define TESTS_WIRE_WIRECASE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Thrown.h"

namespace OvMemTest {

// One exchange with the service as a text that people read:
//
//     # A registered client posts an event.
//     server = "plant"
//     client = "pump"
//     started
//     clients = "before"
//
//     putEvents("valve 7 open", "night-run")
//         OvMem_SendNoAck("Caller-Action=\r\n"
//                         ...
//                         "\r\n")              -> 1
//         OvMem_SendEOF()                      -> 0
//         OvMem_Receive()                      -> 19
//         ...
//         OvMem_Receive()                      -> "<clients/>"
//         OvMem_Receive()                      -> -1
//         OvMem_Complete()                     -> 0
//     clients = "before", "valve"
//
// First what the connection, the caller's variables and the logging library
// hold, as far as it is not empty. Then, once or several times, an operation
// with its arguments, every call that it makes of the transport with the
// answer that it gets, and what holds afterwards, as far as it changes:
// values, `returns 0`, or `throws OvMEMProtocolException -2 "text"`.
//
// A text is one or more quoted pieces that are joined, each perhaps repeated:
// "x" * 4098. An empty list of clients is `none`. The answer of OvMem_Receive
// is a status, or the bytes that it delivers, or a status and the bytes that
// it writes; that of OvMem_GetLastError a status and a text or `null`.
// A # begins a comment that ends with the line.

struct WireState {
    std::string server;
    std::string client;
    std::string locale;
    bool started = false;
    std::vector<std::string> clients;
    std::string events;
    std::string requestId;
    std::string sessionId;
    std::string userAction;
};

struct WireCall {
    std::string function;
    std::string call;  // whole, as the scripted transport records it
    std::int32_t status = 0;
    std::optional<std::string> text;  // delivered along with the status
};

struct WireStep {
    std::string operation;
    std::vector<std::string> arguments;
    std::vector<WireCall> calls;
    Thrown thrown = nothingThrown;
    std::optional<int> returned;
    WireState after;
};

struct WireCase {
    WireState before;
    std::vector<WireStep> steps;
};

// THROWS: std::invalid_argument that says in which line what is wrong.
WireCase parseWireCase(std::string_view text);

}  // namespace OvMemTest

#endif
