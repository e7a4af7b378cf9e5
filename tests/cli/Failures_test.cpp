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
                  "OvMEMConnectionException (0): Out of reach.",
                  "Remove the cause, then try again.");
}

TEST_F(Failures, AProtocolExceptionEndsWith3) {
    expectFailure("init 1002\nlast-error 0 \"No.\"\n", "get", 3,
                  "OvMEMProtocolException (0): No.",
                  "Fix what was asked for; the same request will fail again.");
}

TEST_F(Failures, ARuntimeExceptionEndsWith4) {
    expectFailure(failingExchange(-3010, "Broken."), "put", 4,
                  "OvMEMRuntimeException (0): Broken.",
                  "Try again; if it persists, the platform needs attention.");
}

TEST_F(Failures, AnUnrecognisedExceptionEndsWith5) {
    expectFailure(failingExchange(-42, "What?"), "clients", 5,
                  "OvMEMUnrecognisedException (0): What?",
                  "Report the text; it is the transport's own.");
}

TEST_F(Failures, APlainExceptionEndsWith6) {
    expectFailure(exchange("<r/>") + failingExchange(-3001, "Gone."),
                  "unregister", 6, "Exception (0): Gone.",
                  "Unless the text says otherwise, the service may still know "
                  "the client. Run 'ovmem unregister' again.");
}

TEST_F(Failures, ADomExceptionEndsWith7) {
    expectFailure(exchange("<r><other/></r>"), "register", 7,
                  "DomException: Unexpected node name: other",
                  "Check that it is a Model Event Manager that answers. The "
                  "client may be registered now; nothing else was asked for.");
}

// The guard: ovmem does not trust what answers.
TEST_F(Failures, AReplyWithADocumentTypeEndsWith7) {
    expectFailure(exchange("<!DOCTYPE r [<!ENTITY e 'x'>]><r/>"), "register", 7,
                  "DomException: Fatal Error: parsing: From-String: line 1, "
                  "char 10\n       Message: invalid document structure",
                  "Check that it is a Model Event Manager that answers. The "
                  "client may be registered now; nothing else was asked for.");
}

TEST_F(Failures, AFailedStatusCheckEndsWith2AndNamesTheCause) {
    const std::string last = "last-error 0 \"Lost.\"\n";
    const std::string failing = failingExchange(-751, "Lost.") + last;
    script(failing);
    EXPECT_EQ(ovmem.run({"status"}),
              (Outcome{2, "",
                       "ovmem: OvMEMConnectionException (-1): OvMEM "
                       "Connection failed\n"
                       "ovmem: The transport says: Lost.\n"
                       "ovmem: Remove the cause, then try again.\n"}));
    script(failing);
    EXPECT_EQ(ovmem.run({"status", "--json"}),
              (Outcome{2, "",
                       "{\"error\":\"OvMEMConnectionException\",\"type\":-1,"
                       "\"text\":\"OvMEM Connection failed\",\"cause\":"
                       "\"Lost.\",\"advice\":\"Remove the cause, then try "
                       "again.\",\"exitCode\":2}\n"}));
}

TEST_F(Failures, AFailedStatusCheckSaysThatTheTransportNamesNoCause) {
    const Outcome unnamed = {
        2, "",
        "ovmem: OvMEMConnectionException (-1): OvMEM Connection failed\n"
        "ovmem: Check that the service can be reached; the transport names no "
        "cause.\n"};
    for (const char* last : {"last-error 0 \"\"\n", "last-error 1 \"x\"\n"}) {
        script(failingExchange(-751, "") + last);
        EXPECT_EQ(ovmem.run({"status"}), unnamed);
    }
}

TEST_F(Failures, AWrongAnswerToTheStatusCheckEndsWith10) {
    script(exchange("OvMEM Status"));
    EXPECT_EQ(ovmem.run({"status"}),
              (Outcome{10, "",
                       "ovmem: Something answers, but it does not send the "
                       "status check back as the service does.\n"}));
}

TEST_F(Failures, OfAPutSayThatTheEventsMayHaveArrived) {
    expectFailure(exchange("<r/>") + failingExchange(-3001, "Gone."), "put", 2,
                  "OvMEMConnectionException (0): Gone.",
                  "Unless the text says otherwise, the events may have "
                  "arrived. If you put them again, they may arrive twice.");
    script(exchange("<r/>") + failingExchange(-3001, "Gone."));
    EXPECT_EQ(as("pump").run({"put", "--id", "run 1"}),
              (Outcome{2, "",
                       "ovmem: OvMEMConnectionException (0): Gone.\n"
                       "ovmem: Unless the text says otherwise, the events may "
                       "have arrived. If you run the same command again, they "
                       "arrive twice only where the service does not store a "
                       "repeated put once.\n"}));
    expectFailure(exchange("<r/>") + exchange("<r><other/></r>"), "put", 7,
                  "DomException: Unexpected node name: other",
                  "Check that it is a Model Event Manager that answers; the "
                  "request itself was carried out.");
}

TEST_F(Failures, WithAnEmptyServerIdentityDoNotAskForTheOption) {
    const std::string failed =
        " (-2): Client not Registered with Model Event Manager\n"
        "ovmem: The server identity is empty, which the library takes for "
        "none. Name one with --server or OVMEM_SERVER.\n";
    for (const std::string command : {"put", "get", "clients"}) {
        script(exchange("<r/>"));
        const std::string thrown = command == "clients" ? "*" : "";
        EXPECT_EQ(ovmem.run({command, "--server=", "--client=x"}),
                  (Outcome{3, "",
                           "ovmem: OvMEMProtocolException" + thrown + failed}));
    }
}

TEST_F(Failures, AfterRegisteringACommandThatLooksSaysThatItRegistered) {
    const std::string registered =
        "ovmem: 'pump' is registered at 'plant'; if it was not before, it "
        "receives events from now on.\n";
    for (const char* command : {"clients", "get"}) {
        script(exchange("<r/>") + failingExchange(-3001, "Gone."));
        EXPECT_EQ(as("pump").run({command}),
                  (Outcome{2, "",
                           registered +
                               "ovmem: OvMEMConnectionException (0): Gone.\n"
                               "ovmem: Remove the cause, then try again.\n"}));
    }
}

TEST_F(Failures, EventsThatCameBeforeTheFailureAreWritten) {
    script(exchange("<r/>") + exchange("the events") +
           failingExchange(-3001, "Gone."));
    EXPECT_EQ(as("pump").run({"get"}),
              (Outcome{2, "the events",
                       "ovmem: OvMEMConnectionException (0): Gone.\n"
                       "ovmem: Remove the cause, then try again.\n"}));
}
