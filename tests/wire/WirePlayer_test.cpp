#include "tests/wire/WirePlayer.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// That a case which does not go as written is noticed.

namespace OvMemTest {

namespace {

using Texts = std::vector<std::string>;

const std::string headers = R"(
    OvMem_SendNoAck("Caller-Action=\r\nLog-Correlation-ID="
                    "OvMEMConnection.getStatus\r\nOperation-Name=getStatus\r\n"
                    "Request-ID=\r\nService-Name=OvMEMRequest\r\n"
                    "Session-ID=\r\n\r\n")           -> 1
    OvMem_SendEOF()                                  -> 0
)";

const std::string exchange = headers + R"(
    OvMem_Receive()                                  -> 20
    OvMem_Receive()                                  -> "OvMEM Status check"
    OvMem_Receive()                                  -> -1
    OvMem_Complete()                                 -> 0
)";

Texts play(const std::string& text) {
    return playWireCase(parseWireCase(text));
}

std::string problemOf(const std::string& text) {
    try {
        parseWireCase(text);
    } catch (const std::invalid_argument& problem) {
        return problem.what();
    }
    return "none";
}

}  // namespace

TEST(WirePlayer, ACaseThatGoesAsWrittenHasNoDifferences) {
    EXPECT_EQ(play("started getStatus()" + exchange + "returns 0"), Texts{});
}

TEST(WirePlayer, AWrongByteIsNoticed) {
    std::string wrong = exchange;
    wrong.replace(wrong.find("Session-ID"), 1, "s");
    const Texts differences = play("started getStatus()" + wrong + "returns 0");
    ASSERT_EQ(differences.size(), 1u);
    EXPECT_TRUE(differences[0].starts_with(
        "call 1 is\n    OvMem_SendNoAck(\"Caller-Action="));
    EXPECT_TRUE(differences[0].ends_with("session-ID=\\r\\n\\r\\n\")"));
}

TEST(WirePlayer, ACallTooManyIsNoticed) {
    EXPECT_EQ(
        play("getStatus()" + headers +
             "OvMem_Receive() -> 20 OvMem_Receive() -> -1 returns -2"),
        (Texts{
            "call 1 is\n    OvMem_Init(malloc, free)\n  instead of\n"
            "    " +
                parseWireCase("getStatus()" + headers).steps[0].calls[0].call,
            "call 2 is\n    " +
                parseWireCase("getStatus()" + headers).steps[0].calls[0].call +
                "\n  instead of\n    OvMem_SendEOF()",
            "call 3 is\n    OvMem_SendEOF()\n  instead of\n"
            "    OvMem_Receive()",
            "call 5 is\n    OvMem_Receive()\n  instead of\n"
            "    no call",
            "call 6 is\n    OvMem_Complete()\n  instead of\n"
            "    no call",
            "started is\n    yes\n  instead of\n    no"}));
}

TEST(WirePlayer, ACallTooFewIsNoticed) {
    EXPECT_EQ(
        play("started getStatus()" + exchange + "OvMem_Term() -> 0 returns 0"),
        (Texts{"call 7 is\n    no call\n  instead of\n    OvMem_Term()",
               "Nobody fetched the answer 0 of OvMem_Term"}));
}

TEST(WirePlayer, AWrongResultIsNoticed) {
    EXPECT_EQ(play("started getStatus()" + exchange),
              (Texts{"returned is\n    0\n  instead of\n    nothing"}));
    EXPECT_EQ(play("started getStatus()" + exchange + "returns -2"),
              (Texts{"returned is\n    0\n  instead of\n    -2"}));
}

TEST(WirePlayer, AWrongExceptionIsNoticed) {
    EXPECT_EQ(play("getSharedClients() throws OvMEMProtocolException -2 "
                   "\"Client not Registered with Model Event Manager\""),
              (Texts{"thrown is\n    OvMEMProtocolException*(-2, \"Client not "
                     "Registered with Model Event Manager\")\n  instead of\n"
                     "    OvMEMProtocolException(-2, \"Client not Registered "
                     "with Model Event Manager\")"}));
}

TEST(WirePlayer, AWrongValueAfterwardsIsNoticed) {
    EXPECT_EQ(
        play("server = \"s\" clients = \"a\" started getStatus()" + exchange +
             "returns 0 server = \"t\" client = \"c\" locale = \"l\" "
             "clients = \"a\", \"b\" events = \"e\""),
        (Texts{"server is\n    \"s\"\n  instead of\n    \"t\"",
               "client is\n    \"\"\n  instead of\n    \"c\"",
               "locale is\n    \"\"\n  instead of\n    \"l\"",
               "clients is\n    \"a\"\n  instead of\n    \"a\", \"b\"",
               "events is\n    \"\"\n  instead of\n    \"e\""}));
}

TEST(WirePlayer, ACaseThatCannotBeReadSaysWhere) {
    EXPECT_EQ(problemOf(""), "line 1: there is no operation");
    EXPECT_EQ(problemOf("# nothing\n\nservr = \"s\""),
              "line 3: unknown value 'servr'");
    EXPECT_EQ(problemOf("getStatus()\nretruns 0"),
              "line 2: unknown outcome 'retruns'");
    EXPECT_EQ(problemOf("getStatus(\"x\")"),
              "line 1: getStatus takes 0 arguments");
    EXPECT_EQ(problemOf("server \"s\""), "line 1: '=' is missing");
    EXPECT_EQ(problemOf("server = \"s"), "line 1: closing quote is missing");
    EXPECT_EQ(problemOf("server = \"\\q\""), "line 1: unknown escape \\q");
    EXPECT_EQ(problemOf("getStatus() OvMem_SendEOF() -> x"),
              "line 1: a quoted text is missing");
    EXPECT_EQ(problemOf("getStatus() OvMem_SendEOF( -> 0"),
              "line 1: ')' is missing");
}

TEST(WirePlayer, PiecesOfATextAreJoinedAndRepeated) {
    const WireCase parsed = parseWireCase(
        "server = \"a\\x00\" \"b\" * 3 # a comment \"c\"\n \"d\"\nclients = "
        "\"x\", \"\" getStatus() clients = none");
    EXPECT_EQ(parsed.before.server, std::string("a\0bbbd", 6));
    EXPECT_EQ(parsed.before.clients, (Texts{"x", ""}));
    EXPECT_EQ(parsed.steps[0].after.server, parsed.before.server);
    EXPECT_EQ(parsed.steps[0].after.clients, Texts{});
}

}  // namespace OvMemTest
