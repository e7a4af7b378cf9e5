#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/client/FaultTable.h"
#include "tests/support/Quoted.h"
#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"

// Every status that the transport can fail with, at every call of an exchange
// that can answer with it.

namespace Orvane::Net::OvModelEventManager::Client {

using namespace OvMemTest;

namespace {

// A body of two chunks.
const std::string body = std::string(4098, 'x') + "rest";

void exchangeStream() {
    std::istringstream stream(body);
    OvMEMRequest request;
    request.setHeader("Name", "value");
    request.setRequestStream(&stream);
    request.sendAndReceive();
}

void exchangeBody() {
    OvMEMRequest request;
    request.setRequestBody("body");
    request.sendAndReceive();
}

const std::string headers = R"(OvMem_SendNoAck("Name=value\r\n\r\n"))";
const std::string firstChunk =
    "OvMem_SendNoAck(" + inQuotes(std::string(4098, 'x')) + ")";
const std::string secondChunk = R"(OvMem_SendNoAck("rest"))";
const std::string single = R"(OvMem_Send("\r\nbody"))";
const std::string eof = "OvMem_SendEOF()";
const std::string receive = "OvMem_Receive()";

// One call of an exchange: how to make it fail, what to do, and the calls up
// to it.
struct Site {
    std::string name;
    std::function<void(ScriptedTransport&, int status)> script;
    std::function<void()> exchange;
    Calls calls;
};

const Site sites[] = {
    {"SendOfASingleText",
     [](ScriptedTransport& t, int status) { t.send(status); },
     exchangeBody,
     {single}},
    {"EndMarkOfASingleText",
     [](ScriptedTransport& t, int status) { t.sendEof(status); },
     exchangeBody,
     {single, eof}},
    {"ReplyToASingleText",
     [](ScriptedTransport& t, int status) { t.receive(status); },
     exchangeBody,
     {single, eof, receive}},
    {"Headers",
     [](ScriptedTransport& t, int status) { t.sendNoAck(status); },
     exchangeStream,
     {headers}},
    {"Handshake",
     [](ScriptedTransport& t, int status) { t.receive(status); },
     exchangeStream,
     {headers, eof, receive}},
    {"FirstChunk",
     [](ScriptedTransport& t, int status) {
         t.receive(19).sendNoAck(1).sendNoAck(status);
     },
     exchangeStream,
     {headers, eof, receive, firstChunk}},
    {"SecondChunk",
     [](ScriptedTransport& t, int status) {
         t.receive(19).sendNoAck(1).sendNoAck(1).sendNoAck(status);
     },
     exchangeStream,
     {headers, eof, receive, firstChunk, secondChunk}},
    {"EndMarkOfTheBody",
     [](ScriptedTransport& t, int status) {
         t.receive(19).sendEof(0).sendEof(status);
     },
     exchangeStream,
     {headers, eof, receive, firstChunk, secondChunk, eof}},
    {"HandshakeAfterTheBody",
     [](ScriptedTransport& t, int status) { t.receive(19).receive(status); },
     exchangeStream,
     {headers, eof, receive, firstChunk, secondChunk, eof, receive}},
    {"EndMarkOfASecondPass",
     [](ScriptedTransport& t, int status) {
         t.receive(19).receive(19).sendEof(0).sendEof(0).sendEof(status);
     },
     exchangeStream,
     {headers, eof, receive, firstChunk, secondChunk, eof, receive, eof}},
    {"Reply",
     [](ScriptedTransport& t, int status) { t.receive(20).receive(status); },
     exchangeStream,
     {headers, eof, receive, receive}},
    {"ReplyAfterTheBody",
     [](ScriptedTransport& t, int status) {
         t.receive(19).receive(20).chunk("partial").receive(status);
     },
     exchangeStream,
     {headers, eof, receive, firstChunk, secondChunk, eof, receive, receive,
      receive}},
};

struct RequestCase {
    Site site;
    Fault fault;
};

// A positive status is no error here, nor is -1 when a reply ends.
std::vector<RequestCase> requestCases() {
    std::vector<RequestCase> result;
    for (const Site& site : sites) {
        for (const Fault& fault : faultTable) {
            const bool ends =
                fault.status == -1 && site.name.starts_with("Reply");
            if (fault.status < 0 && !ends) {
                result.push_back({site, fault});
            }
        }
    }
    return result;
}

std::string requestCaseName(const ::testing::TestParamInfo<RequestCase>& info) {
    return info.param.site.name + "AnswersMinus" +
           std::to_string(info.param.fault.status).substr(1);
}

}  // namespace

class OvMEMRequestFaults : public ScriptedPlatformTest,
                           public ::testing::WithParamInterface<RequestCase> {};

TEST_P(OvMEMRequestFaults, AreThrownAndNothingMoreIsCalled) {
    const auto& [site, fault] = GetParam();
    site.script(transport, fault.status);
    transport.lastError(0, "what went wrong");
    EXPECT_EQ(thrownBy(site.exchange),
              (Thrown{fault.type, 0, "what went wrong"}));
    Calls calls = site.calls;
    calls.push_back("OvMem_GetLastError()");
    EXPECT_EQ(transport.takeCalls(), calls);
}

INSTANTIATE_TEST_SUITE_P(EveryStatusAtEveryCall, OvMEMRequestFaults,
                         ::testing::ValuesIn(requestCases()), requestCaseName);

}  // namespace Orvane::Net::OvModelEventManager::Client
