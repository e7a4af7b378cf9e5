#include <string>

#include "tests/client/ConnectionTest.h"

// getEvents and putEvents.

namespace OvMemTest {

class OvMEMConnectionEvents : public ConnectionTest {
protected:
    void get() { connection.getEvents(events, shared, correlation); }
    void put() { connection.putEvents(events, shared, correlation); }
};

// getEvents

TEST_F(OvMEMConnectionEvents, GettingReplacesTheEventsAndThenTheClients) {
    identify();
    answer("new events");
    answer(listing({"valve", "motor"}));
    get();
    EXPECT_EQ(takeTransportCalls(), fetching.calls() + askingWhoShares.calls());
    EXPECT_EQ(events, "new events");
    EXPECT_EQ(shared, (Texts{"valve", "motor"}));
    EXPECT_EQ(correlation, "night-run");
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
}

TEST_F(OvMEMConnectionEvents, GettingNothingEmptiesTheEvents) {
    identify();
    transport.receive(20).reply("");
    answer(listing({}));
    get();
    EXPECT_EQ(takeTransportCalls(),
              (Calls{fetching.headers(), "OvMem_SendEOF()", "OvMem_Receive()",
                     "OvMem_Receive()", "OvMem_Complete()"}) +
                  askingWhoShares.calls());
    EXPECT_EQ(events, "");
    EXPECT_EQ(shared, Texts{});
}

TEST_F(OvMEMConnectionEvents, TheEventsAreNeitherParsedNorConverted) {
    identify();
    const std::string bytes("<not\0&xml \xE9\xFF\r\n\x1A", 16);
    answer(bytes);
    answer(listing({}));
    get();
    EXPECT_EQ(events, bytes);
    EXPECT_EQ(takeTransportCalls(), fetching.calls() + askingWhoShares.calls());
}

TEST_F(OvMEMConnectionEvents, ManyEventsArriveWhole) {
    identify();
    const std::string bytes(100000, 'e');
    transport.receive(20).reply(bytes);
    answer(listing({"valve"}));
    get();
    EXPECT_EQ(events, bytes);
    EXPECT_EQ(shared, (Texts{"valve"}));
    EXPECT_EQ(
        takeTransportCalls(),
        (Calls{fetching.headers(), "OvMem_SendEOF()", "OvMem_Receive()"}) +
            Calls(8, "OvMem_Receive()") + Calls{"OvMem_Complete()"} +
            askingWhoShares.calls());
}

TEST_F(OvMEMConnectionEvents,
       GettingUnregisteredThrowsByValueAndTouchesNothing) {
    clientIdOf(connection) = "pump";
    EXPECT_EQ(thrownBy([this] { get(); }), notRegistered);
    EXPECT_EQ(transport.takeCalls(), Calls{});
    EXPECT_EQ(events, "the events of before");
    EXPECT_EQ(shared, (Texts{"before"}));
    EXPECT_FALSE(ovMemStartedOf(connection));
}

TEST_F(OvMEMConnectionEvents, AFailureOfTheFirstExchangeTouchesNothing) {
    identify();
    transport.receive(19).receive(20).chunk("partial").receive(-3001);
    transport.lastError(0, "gone");
    EXPECT_EQ(thrownBy([this] { get(); }),
              (Thrown{"OvMEMConnectionException", 0, "gone"}));
    Calls calls = fetching.calls();
    calls.back() = "OvMem_GetLastError()";
    EXPECT_EQ(takeTransportCalls(), calls);
    EXPECT_EQ(events, "the events of before");
    EXPECT_EQ(shared, (Texts{"before"}));
}

TEST_F(OvMEMConnectionEvents, AFailureOfTheSecondExchangeLeavesTheNewEvents) {
    identify();
    answer("new events");
    transport.receive(-3010).lastError(0, "broken");
    EXPECT_EQ(thrownBy([this] { get(); }),
              (Thrown{"OvMEMRuntimeException", 0, "broken"}));
    const Calls failing{askingWhoShares.headers(), "OvMem_SendEOF()",
                        "OvMem_Receive()", "OvMem_GetLastError()"};
    EXPECT_EQ(takeTransportCalls(), fetching.calls() + failing);
    EXPECT_EQ(events, "new events");
    EXPECT_EQ(shared, Texts{});
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
}

TEST_F(OvMEMConnectionEvents, ABadListOfClientsLeavesTheNewEvents) {
    identify();
    answer("new events");
    answer("<r><sharedClients>a</sharedClients><x/></r>");
    EXPECT_EQ(thrownBy([this] { get(); }),
              (Thrown{"DomException", 0, "Unexpected node name: x"}));
    EXPECT_EQ(takeTransportCalls(), fetching.calls() + askingWhoShares.calls());
    EXPECT_EQ(events, "new events");
    EXPECT_EQ(shared, Texts{});
}

TEST_F(OvMEMConnectionEvents, TheCorrelationOfTheCallerIsThatOfTheFirstOnly) {
    identify();
    correlation = "";
    answer("new events");
    answer(listing({}));
    get();
    Exchange uncorrelated = fetching;
    uncorrelated.correlation = "";
    EXPECT_EQ(takeTransportCalls(),
              uncorrelated.calls() + askingWhoShares.calls());
}

TEST_F(OvMEMConnectionEvents, GettingStartsTheTransportOnce) {
    identify();
    ovMemStartedOf(connection) = false;
    answer("new events");
    answer(listing({}));
    get();
    EXPECT_EQ(takeTransportCalls(),
              Calls{start} + fetching.calls() + askingWhoShares.calls());
}

// putEvents

TEST_F(OvMEMConnectionEvents, PuttingSendsTheTextAndAppendsTheClients) {
    identify();
    events = "valve 7 open";
    answer(listing({"valve", "motor"}));
    put();
    EXPECT_EQ(takeTransportCalls(), putting("valve 7 open").calls());
    EXPECT_EQ(events, "valve 7 open");
    EXPECT_EQ(shared, (Texts{"before", "valve", "motor"}));
    EXPECT_EQ(correlation, "night-run");
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
}

TEST_F(OvMEMConnectionEvents, PuttingNothingIsStillAnExchange) {
    identify();
    events = "";
    answer(listing({"valve"}));
    put();
    EXPECT_EQ(takeTransportCalls(), putting("").calls());
    EXPECT_EQ(shared, (Texts{"before", "valve"}));
}

TEST_F(OvMEMConnectionEvents, ALongTextGoesOutInChunks) {
    identify();
    events = std::string(4098, 'a') + std::string(4098, 'b') + "c";
    answer(listing({}));
    put();
    Calls calls{putting("").headers(), "OvMem_SendEOF()", "OvMem_Receive()"};
    for (const std::string& chunk :
         {std::string(4098, 'a'), std::string(4098, 'b'), std::string("c")}) {
        calls.push_back("OvMem_SendNoAck(\"" + chunk + "\")");
    }
    const Calls tail{"OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Receive()", "OvMem_Complete()"};
    EXPECT_EQ(takeTransportCalls(), calls + tail);
}

// docs/irregularities.md#nul-cuts-the-text
TEST_F(OvMEMConnectionEvents, NulCutsTheTextThatIsPut) {
    identify();
    events = std::string("before\0behind", 13);
    answer(listing({}));
    put();
    EXPECT_EQ(takeTransportCalls(), putting("before").calls());
    EXPECT_EQ(events, std::string("before\0behind", 13));
}

TEST_F(OvMEMConnectionEvents, TheEventsArePutAsTheyAre) {
    identify();
    events = "<&>\"\\ \xE9\xFF\r\nnull";
    answer(listing({}));
    put();
    EXPECT_EQ(takeTransportCalls(), putting(events).calls());
}

TEST_F(OvMEMConnectionEvents, PuttingUnregisteredThrowsByValueAndSendsNothing) {
    clientIdOf(connection) = "pump";
    EXPECT_EQ(thrownBy([this] { put(); }), notRegistered);
    EXPECT_EQ(transport.takeCalls(), Calls{});
    EXPECT_EQ(events, "the events of before");
    EXPECT_EQ(shared, (Texts{"before"}));
}

TEST_F(OvMEMConnectionEvents, ABadReplyToPuttingComesAfterTheDelivery) {
    identify();
    answer("<r><x/></r>");
    EXPECT_EQ(thrownBy([this] { put(); }),
              (Thrown{"DomException", 0, "Unexpected node name: x"}));
    EXPECT_EQ(takeTransportCalls(), putting("the events of before").calls());
    EXPECT_EQ(events, "the events of before");
    EXPECT_EQ(shared, (Texts{"before"}));
}

TEST_F(OvMEMConnectionEvents, NothingIsReadWhenTheServiceWantsNoBody) {
    identify();
    transport.receive(20).reply(listing({"valve"}));
    put();
    EXPECT_EQ(
        takeTransportCalls(),
        (Calls{putting("").headers(), "OvMem_SendEOF()", "OvMem_Receive()",
               "OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
    EXPECT_EQ(shared, (Texts{"before", "valve"}));
}

TEST_F(OvMEMConnectionEvents, WhatIsGotCanBePutWithTheSameVariables) {
    identify();
    answer("event\n");
    answer(listing({"valve"}));
    get();
    answer(listing({"motor"}));
    put();
    EXPECT_EQ(takeTransportCalls(), fetching.calls() + askingWhoShares.calls() +
                                        putting("event\n").calls());
    EXPECT_EQ(shared, (Texts{"valve", "motor"}));
}

}  // namespace OvMemTest
