#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/emulator/StartedTransport.h"
#include "tests/emulator/Wire.h"

using namespace Orvane::Net::OvModelEventManager::Client;
using testing::ElementsAre;
using testing::IsEmpty;

// The client library on the emulator: what one says the other understands.

namespace {

using Ids = std::vector<std::string>;

class OvMEMConnectionOnEmulator : public OvMemTest::StartedTransport {
protected:
    // A connection never ends the transport that it started; ends beyond the
    // last do no harm.
    ~OvMEMConnectionOnEmulator() override {
        constexpr int moreThanConnections = 10;
        for (int i = 0; i < moreThanConnections; ++i) {
            OvMem_Term();
        }
    }

    Ids join(OvMEMConnection& connection, std::string client) {
        Ids others;
        connection.registerClient(server, client, locale, others);
        return others;
    }
    Ids put(OvMEMConnection& connection, std::string events) {
        Ids others;
        connection.putEvents(events, others, correlation);
        return others;
    }
    std::string get(OvMEMConnection& connection) {
        std::string events;
        connection.getEvents(events, lastOthers, correlation);
        return events;
    }

    std::string server = "plant";
    std::string locale = "en_GB";
    std::string correlation = "night-run";
    Ids lastOthers;
};

}  // namespace

TEST_F(OvMEMConnectionOnEmulator, TheServiceIsAlive) {
    OvMEMConnection connection;
    EXPECT_EQ(connection.getStatus(), 0);
}

TEST_F(OvMEMConnectionOnEmulator, ClientsShareTheirEvents) {
    OvMEMConnection pump;
    OvMEMConnection valve;
    EXPECT_THAT(join(pump, "pump"), IsEmpty());
    EXPECT_THAT(join(valve, "<valve & \"co\" 100%>"), ElementsAre("pump"));
    EXPECT_THAT(put(pump, "one\r\n\r\n"), ElementsAre("<valve & \"co\" 100%>"));
    EXPECT_THAT(put(pump, ""), ElementsAre("<valve & \"co\" 100%>"));
    EXPECT_THAT(put(pump, "two"), ElementsAre("<valve & \"co\" 100%>"));
    EXPECT_EQ(get(valve), "one\r\n\r\ntwo");
    EXPECT_THAT(lastOthers, ElementsAre("pump"));
    EXPECT_EQ(get(valve), "");
    EXPECT_EQ(get(pump), "");
    Ids left;
    pump.unregisterClient(left);
    EXPECT_THAT(left, ElementsAre("<valve & \"co\" 100%>"));
    EXPECT_EQ(get(valve), "");
    EXPECT_THAT(lastOthers, IsEmpty());
}

TEST_F(OvMEMConnectionOnEmulator, LargeEventsComeThroughWhole) {
    OvMEMConnection pump;
    OvMEMConnection valve;
    join(pump, "pump");
    join(valve, "valve");
    std::string large;
    for (int i = 0; large.size() < 3 * 1024 * 1024; ++i) {
        large += std::to_string(i) + ";";
    }
    put(pump, large);
    EXPECT_TRUE(get(valve) == large);
}

TEST_F(OvMEMConnectionOnEmulator, ARefusalIsTheExceptionOfItsStatus) {
    OvMEMConnection stranger;
    Ids others;
    try {
        stranger.unregisterClient(others);
        FAIL() << "not refused";
    } catch (const Exception& error) {
        EXPECT_EQ(error.getType(), 0);
        EXPECT_EQ(error.getMessage(),
                  "The client '' is not registered with the server ''. Call "
                  "registerClient before unregisterClient.");
    }
}

TEST_F(OvMEMConnectionOnEmulator, AfterARefusalTheNextOperationSucceeds) {
    OvMEMConnection pump;
    OvMEMConnection valve;
    join(pump, "pump");
    join(valve, "valve");
    OvMEMConnection twin(valve);
    Ids others;
    twin.unregisterClient(others);
    EXPECT_THROW(get(valve), OvMEMProtocolException);
    EXPECT_EQ(valve.getStatus(), 0);
    EXPECT_THAT(join(valve, "valve"), ElementsAre("pump"));
}

TEST_F(OvMEMConnectionOnEmulator, ARequestInOnePieceIsAnswered) {
    OvMEMRequest request;
    request.setHeader("Service-Name", "OvMEMRequest");
    request.setHeader("Operation-Name", "getStatus");
    request.setRequestBody("echo");
    EXPECT_EQ(request.sendAndReceive(), "echo");
}

TEST_F(OvMEMConnectionOnEmulator, AnUnfinishedRequestDoesNotHarmTheNext) {
    OvMEMRequest given;
    given.setHeader("Service-Name", "OvMEMRequest");
    given.setHeader("Operation-Name", "getStatus");
    given.sendHeaders();
    OvMEMConnection connection;
    EXPECT_EQ(connection.getStatus(), 0);
    given.sendText("never received");
    EXPECT_EQ(connection.getStatus(), 0);
}
