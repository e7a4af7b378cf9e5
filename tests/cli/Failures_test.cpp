#include "tests/cli/ScriptedCliTest.h"

using OvMemTest::exchange;
using OvMemTest::failingExchange;
using OvMemTest::Outcome;

namespace {

// How failures of the service come out, class by class.
class Failures : public OvMemTest::ScriptedCliTest {
protected:
    void expectFailure(const std::string& answers, const std::string& command,
                       int exitCode, const std::string& report,
                       const std::string& advice) {
        script(answers);
        EXPECT_EQ(as("pump").run({command}),
                  (Outcome{exitCode, "",
                           "ovmem: " + report + "\novmem: " + advice + "\n"}));
    }
};

}  // namespace

TEST_F(Failures, AConnectionExceptionEndsWith2) {
    expectFailure(failingExchange(-3001, "Out of reach."), "register", 2,
                  "OvMEMConnectionException (type 0): Out of reach.",
                  "Check that the service can be reached; try again.");
}

TEST_F(Failures, AProtocolExceptionEndsWith3) {
    expectFailure("init 1002\nlast-error 0 \"No.\"\n", "get", 3,
                  "OvMEMProtocolException (type 0): No.",
                  "The service refused the request as it stands; sending it "
                  "again unchanged will fail again.");
}

TEST_F(Failures, ARuntimeExceptionEndsWith4) {
    expectFailure(failingExchange(-3010, "Broken."), "put", 4,
                  "OvMEMRuntimeException (type 0): Broken.",
                  "Try again; if it persists, the platform needs attention.");
}

TEST_F(Failures, AnUnrecognisedExceptionEndsWith5) {
    expectFailure(failingExchange(-42, "What?"), "clients", 5,
                  "OvMEMUnrecognisedException (type 0): What?",
                  "Report the text; it is the transport's own.");
}

TEST_F(Failures, APlainExceptionEndsWith6) {
    expectFailure(exchange("<r/>") + failingExchange(-3001, "Gone."),
                  "unregister", 6, "Exception (type 0): Gone.",
                  "The service may still know the client; see the text.");
}

TEST_F(Failures, ADomExceptionEndsWith7) {
    expectFailure(exchange("<r><other/></r>"), "register", 7,
                  "DomException: Unexpected node name: other",
                  "The reply is not the expected XML; is it a Model Event "
                  "Manager that answers? The request itself was carried out.");
}

TEST_F(Failures, AFailedStatusCheckEndsWith2) {
    expectFailure(failingExchange(-751, "Lost."), "status", 2,
                  "OvMEMConnectionException (type -1): OvMEM Connection failed",
                  "The service did not answer the status check. 'ovmem "
                  "register' reports the transport's own text.");
}

TEST_F(Failures, AWrongAnswerToTheStatusCheckEndsWith10) {
    script(exchange("OvMEM Status"));
    EXPECT_EQ(ovmem.run({"status"}),
              (Outcome{10, "",
                       "ovmem: Something answers, but not as the service "
                       "does.\n"}));
}

TEST_F(Failures, EventsThatCameBeforeTheFailureAreWritten) {
    script(exchange("<r/>") + exchange("the events") +
           failingExchange(-3001, "Gone."));
    EXPECT_EQ(as("pump").run({"get"}),
              (Outcome{2, "the events",
                       "ovmem: OvMEMConnectionException (type 0): Gone.\n"
                       "ovmem: Check that the service can be reached; try "
                       "again.\n"}));
}
