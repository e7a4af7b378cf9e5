#include <array>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/StartedTransport.h"
#include "tests/emulator/Wire.h"
#include "tests/support/TemporaryFolder.h"

using namespace OvMemTest;

// What OvMemBinding refuses: the status, the whole text of OvMem_GetLastError,
// and what becomes of the exchange.

namespace {

constexpr const char* nothingToReceive =
    "There is nothing to receive: no request was sent on this thread. Send one "
    "before OvMem_Receive.";
constexpr const char* notEnded =
    "There is nothing to receive: what is being sent was not ended. Call "
    "OvMem_SendEOF before OvMem_Receive.";
constexpr const char* allReceived =
    "There is nothing more to receive: the reply has been read to its end. "
    "Call OvMem_Complete, then send the next request.";
constexpr const char* nothingToEnd =
    "There is nothing to end: nothing is being sent on this thread. Call "
    "OvMem_Send or OvMem_SendNoAck before OvMem_SendEOF.";
constexpr const char* nothingToComplete =
    "There is nothing to complete: no reply was read to its end on this "
    "thread. Call OvMem_Receive until it answers -1, then OvMem_Complete.";
constexpr const char* notStarted =
    "The transport is not started. Call OvMem_Init before any other function.";

class OvMemBindingRefusals : public StartedTransport {
protected:
    void expectReceive(std::int32_t status, const std::string& text) {
        EXPECT_EQ(OvMem_Receive(buffer.data()), status);
        EXPECT_EQ(lastError(), text);
    }
    static void expectEof(std::int32_t status, const std::string& text) {
        EXPECT_EQ(OvMem_SendEOF(), status);
        EXPECT_EQ(lastError(), text);
    }
    static void expectComplete(std::int32_t status, const std::string& text) {
        EXPECT_EQ(OvMem_Complete(), status);
        EXPECT_EQ(lastError(), text);
    }

    std::array<char, 16384> buffer{};
    const std::string block = headerBlock("getStatus", "", "");
};

}  // namespace

TEST_F(OvMemBindingRefusals, NothingSentMeansNothingToReceiveEndOrComplete) {
    expectReceive(-3016, nothingToReceive);
    expectEof(-3016, nothingToEnd);
    expectComplete(-3016, nothingToComplete);
}

TEST_F(OvMemBindingRefusals, ACallOutOfOrderLeavesAStreamedExchangeAsItWas) {
    EXPECT_GT(OvMem_SendNoAck(block.c_str()), 0);
    expectReceive(-3016, notEnded);
    expectComplete(-3016, nothingToComplete);
    expectEof(0, "(none)");
    expectEof(-3016, nothingToEnd);
    expectComplete(-3016, nothingToComplete);
    expectReceive(19, "(none)");
    expectReceive(-3016, notEnded);
    expectComplete(-3016, nothingToComplete);
    EXPECT_GT(OvMem_SendNoAck("echo"), 0);
    expectReceive(-3016, notEnded);
    expectEof(0, "(none)");
    expectEof(-3016, nothingToEnd);
    expectComplete(-3016, nothingToComplete);
    expectReceive(20, "(none)");
    expectEof(-3016, nothingToEnd);
    expectComplete(-3016, nothingToComplete);
    expectReceive(4, "(none)");
    expectComplete(-3016, nothingToComplete);
    expectReceive(-1, "(none)");
    expectReceive(-3016, allReceived);
    expectEof(-3016, nothingToEnd);
    expectComplete(0, "(none)");
    expectComplete(-3016, nothingToComplete);
    expectReceive(-3016, nothingToReceive);
}

TEST_F(OvMemBindingRefusals, ACallOutOfOrderLeavesAWholeRequestAsItWas) {
    EXPECT_EQ(OvMem_Send((block + "echo").c_str()), 0);
    expectReceive(-3016, notEnded);
    expectEof(0, "(none)");
    expectEof(-3016, nothingToEnd);
    expectComplete(-3016, nothingToComplete);
    expectReceive(4, "(none)");
    expectReceive(-1, "(none)");
    expectComplete(0, "(none)");
}

TEST_F(OvMemBindingRefusals, AMalformedHeaderBlockEndsTheExchange) {
    const Outcome refused{-751, "",
                          "The request is not for this service. Send the "
                          "header Service-Name=OvMEMRequest."};
    EXPECT_EQ(streamedExchange("A=1\r\n\r\n", {"body"}), refused);
    expectReceive(-3016, nothingToReceive);
    EXPECT_EQ(wholeExchange("A=1\r\n\r\nbody"), refused);
    expectReceive(-3016, nothingToReceive);
}

TEST_F(OvMemBindingRefusals, AnUnknownOperationEndsTheExchange) {
    EXPECT_EQ(streamedExchange(headerBlock("getNews", "plant", "pump"), {}),
              (Outcome{-751, "",
                       "The operation 'getNews' is unknown. Send the header "
                       "Operation-Name with one of registerClient, "
                       "unregisterClient, getSharedClients, getEvents, "
                       "putEvents, getStatus."}));
}

TEST_F(OvMemBindingRefusals, AHeaderBlockOverTheLimitIsRefusedWhenSent) {
    const Outcome refused{-751, "",
                          "The header block is longer than 65536 bytes. Send "
                          "a shorter one."};
    const std::string longLine = "A=" + std::string(65536, 'x') + "\r\n";
    EXPECT_EQ(streamedExchange(longLine + block, {}), refused);
    EXPECT_EQ(wholeExchange(longLine + block), refused);
    expectReceive(-3016, nothingToReceive);
}

TEST_F(OvMemBindingRefusals, AHeaderBlockAtTheLimitIsTaken) {
    const std::string padding(65536 - block.size() - 4, 'x');
    const std::string longest = "A=" + padding + "\r\n" + block;
    ASSERT_EQ(longest.size(), 65536U);
    EXPECT_EQ(streamedExchange(longest, {"echo"}).reply, "echo");
    EXPECT_EQ(wholeExchange(longest + "echo").reply, "echo");
}

TEST_F(OvMemBindingRefusals, WhoIsNotRegisteredIsRefusedBeforeTheReply) {
    EXPECT_EQ(request("putEvents", "plant", "pump", "open"),
              (Outcome{-3017, "",
                       "The client 'pump' is not registered with the server "
                       "'plant'. Call registerClient before putEvents."}));
    expectReceive(-3016, nothingToReceive);
    EXPECT_EQ(wholeExchange(headerBlock("getEvents", "", "")),
              (Outcome{-3017, "",
                       "The client '' is not registered with the server ''. "
                       "Call registerClient before getEvents."}));
}

TEST_F(OvMemBindingRefusals, NullPointersAreRefused) {
    EXPECT_EQ(OvMem_Send(nullptr), -751);
    EXPECT_EQ(lastError(),
              "OvMem_Send was given a null pointer. Give it the address of a "
              "text or buffer.");
    EXPECT_EQ(OvMem_SendNoAck(nullptr), -751);
    EXPECT_EQ(lastError(),
              "OvMem_SendNoAck was given a null pointer. Give it the address "
              "of a text or buffer.");
    EXPECT_EQ(OvMem_Receive(nullptr), -751);
    EXPECT_EQ(lastError(),
              "OvMem_Receive was given a null pointer. Give it the address of "
              "a text or buffer.");
    EXPECT_EQ(OvMem_GetLastError(nullptr), -751);
    EXPECT_EQ(lastError(),
              "OvMem_GetLastError was given a null pointer. Give it the "
              "address of a text pointer.");
}

TEST_F(OvMemBindingRefusals, ATextIsForgottenByTheNextCall) {
    expectEof(-3016, nothingToEnd);
    EXPECT_EQ(lastError(), nothingToEnd);
    EXPECT_GT(OvMem_SendNoAck(block.c_str()), 0);
    EXPECT_EQ(lastError(), "(none)");
}

TEST(OvMemBindingUnstarted, EveryCallButTheEndIsRefused) {
    std::array<char, 16384> buffer{};
    EXPECT_EQ(lastError(), "(none)");
    EXPECT_EQ(OvMem_Send("x"), -3016);
    EXPECT_EQ(lastError(), notStarted);
    EXPECT_EQ(OvMem_SendNoAck("x"), -3016);
    EXPECT_EQ(lastError(), notStarted);
    EXPECT_EQ(OvMem_SendEOF(), -3016);
    EXPECT_EQ(lastError(), notStarted);
    EXPECT_EQ(OvMem_Receive(buffer.data()), -3016);
    EXPECT_EQ(lastError(), notStarted);
    EXPECT_EQ(OvMem_Complete(), -3016);
    EXPECT_EQ(lastError(), notStarted);
    EXPECT_EQ(OvMem_Send(nullptr), -3016);
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_EQ(lastError(), "(none)");
}

TEST(OvMemBindingUnstarted, NullHeapFunctionsAreRefused) {
    const std::string text =
        "OvMem_Init was given a null pointer. Give it two heap functions, such "
        "as malloc and free.";
    EXPECT_EQ(OvMem_Init(nullptr, &std::free), 1002);
    EXPECT_EQ(lastError(), text);
    EXPECT_EQ(OvMem_Init(&std::malloc, nullptr), 1002);
    EXPECT_EQ(lastError(), text);
    EXPECT_EQ(OvMem_SendEOF(), -3016);
    EXPECT_EQ(lastError(), notStarted);
}

TEST(OvMemBindingUnstarted, AStoreThatCannotBeReachedIsRefused) {
    const TemporaryFolder folder;
    Environment environment;
    environment.set("OVMEM_STORE", "postgresql://host/events");
    EXPECT_EQ(OvMem_Init(&std::malloc, &std::free), 1001);
    EXPECT_EQ(lastError(),
              "The store URL 'postgresql://host/events' names a PostgreSQL "
              "store, which is not built in. Set OVMEM_STORE to sqlite:PATH or "
              "memory:. Options follow a '?', with '&' between them: "
              "portion=BYTES, dedupe=correlation, lease=SECONDS, "
              "limit-events=N, limit-bytes=N, limit-age=SECONDS; of "
              "sqlite:PATH alone: synchronous=NORMAL or FULL, access=OWNER or "
              "GROUP.");
    EXPECT_EQ(OvMem_SendEOF(), -3016) << "started after all";
    environment.set("OVMEM_STORE", "sqlite:" + folder.file("events.db"));
    EXPECT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
    EXPECT_EQ(lastError(), "(none)");
    EXPECT_EQ(OvMem_Term(), 0);
}

TEST(OvMemBindingUnstarted, APutBeyondALimitOfTheStoreIsRefused) {
    const TemporaryFolder folder;
    Environment environment;
    const std::string path = folder.file("events.db");
    environment.set("OVMEM_STORE", "sqlite:" + path + "?limit-events=1");
    ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
    const std::string valveOnly = sharedClients({"valve"});
    request("registerClient", "plant", "pump");
    request("registerClient", "plant", "valve");
    EXPECT_EQ(request("putEvents", "plant", "pump", "one"),
              (Outcome{-1, valveOnly, "(none)"}));
    EXPECT_EQ(request("putEvents", "plant", "pump", "two"),
              (Outcome{-751, "",
                       "The event store '" + path +
                           "' keeps at most 1 event for a client "
                           "(limit-events=1), and 2 events would wait with "
                           "this put for the client 'valve' of the server "
                           "'plant'. Nothing was stored. Let that client get "
                           "its events, or unregister it, then repeat the "
                           "put."}));
    EXPECT_EQ(request("getEvents", "plant", "valve"),
              (Outcome{-1, "one", "(none)"}));
    EXPECT_EQ(request("putEvents", "plant", "pump", "two"),
              (Outcome{-1, valveOnly, "(none)"}));
    EXPECT_EQ(OvMem_Term(), 0);
}
