#include "emulator/manager/RequestHeader.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "emulator/manager/Refusal.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::string_literals;

namespace {

const std::string service = "Service-Name=OvMEMRequest\r\n";
const std::string names =
    "registerClient, unregisterClient, getSharedClients, getEvents, "
    "putEvents, getStatus.";

std::string headerRefusal(const std::function<void()>& work) {
    try {
        work();
    } catch (const Refusal& refused) {
        EXPECT_EQ(refused.status, -751);
        return refused.what();
    }
    return "no refusal";
}

std::string blockRefusal(const std::string& block) {
    return headerRefusal([&block] { RequestHeader::parse(block); });
}

}  // namespace

TEST(RequestHeader, TheClientsBlockIsUnderstood) {
    const RequestHeader header = RequestHeader::parse(
        "Client-ID=pump\r\nLocale=en_GB\r\nLog-Correlation-ID=night\r\n"
        "Operation-Name=putEvents\r\nRequest-ID=\r\nServer-ID=plant\r\n"
        "Service-Name=OvMEMRequest\r\nSession-ID=\r\nUser-Action=\r\n\r\n");
    EXPECT_EQ(header.operation, Operation::putEvents);
    EXPECT_EQ(header.caller.serverId, "plant");
    EXPECT_EQ(header.caller.clientId, "pump");
    EXPECT_EQ(header.correlation, "night");
}

TEST(RequestHeader, ACorrelationMayBeMissingOrNameNoPut) {
    const auto correlation = [](const std::string& line) {
        return RequestHeader::parse(service + line +
                                    "Operation-Name=putEvents\r\nServer-ID="
                                    "\r\nClient-ID=\r\n\r\n")
            .correlation;
    };
    EXPECT_EQ(correlation(""), "");
    EXPECT_EQ(correlation("Log-Correlation-ID=\r\n"), "");
    EXPECT_EQ(correlation("Log-Correlation-ID=ovmem.put\r\n"), "");
    EXPECT_EQ(correlation("Log-Correlation-ID=ovmem.put \r\n"), "ovmem.put ");
}

TEST(RequestHeader, EveryOperationHasItsName) {
    const auto parsed = [](const char* name) {
        return RequestHeader::parse(service + "Operation-Name=" + name +
                                    "\r\nServer-ID=\r\nClient-ID=\r\n\r\n")
            .operation;
    };
    EXPECT_EQ(parsed("registerClient"), Operation::registerClient);
    EXPECT_EQ(parsed("unregisterClient"), Operation::unregisterClient);
    EXPECT_EQ(parsed("getSharedClients"), Operation::getSharedClients);
    EXPECT_EQ(parsed("getEvents"), Operation::getEvents);
    EXPECT_EQ(parsed("putEvents"), Operation::putEvents);
    EXPECT_EQ(parsed("getStatus"), Operation::getStatus);
    for (const char* name :
         {"registerClient", "unregisterClient", "getSharedClients", "getEvents",
          "putEvents", "getStatus"}) {
        EXPECT_STREQ(operationName(parsed(name)), name);
    }
}

TEST(RequestHeader, ValuesMayBeEmptyAndMayHoldEqualsSignsAndSingleLineEnds) {
    const RequestHeader header = RequestHeader::parse(
        service + "Operation-Name=getEvents\r\nServer-ID=a=b=\r\n" +
        "Client-ID=x\ny\rz\r\nOther=\r\n\r\n");
    EXPECT_EQ(header.caller.serverId, "a=b=");
    EXPECT_EQ(header.caller.clientId, "x\ny\rz");
}

TEST(RequestHeader, GetStatusNeedsNoIdentityAndTakesNone) {
    const RequestHeader header = RequestHeader::parse(
        service + "Operation-Name=getStatus\r\nServer-ID=plant\r\n\r\n");
    EXPECT_EQ(header.operation, Operation::getStatus);
    EXPECT_EQ(header.caller.serverId, "");
}

TEST(RequestHeader, ABlockWithoutAnEmptyLineAtItsEndIsMalformed) {
    const std::string text =
        "The header block has no empty line at its end. Close it with CR LF "
        "alone.";
    EXPECT_EQ(blockRefusal(""), text);
    EXPECT_EQ(blockRefusal(service), text);
    EXPECT_EQ(blockRefusal(service + "Operation-Name=getStatus\r\n"), text);
    EXPECT_EQ(blockRefusal(service + "Operation-Name=getStatus\r\n\n"), text);
}

TEST(RequestHeader, ABlockThatGoesOnIsMalformed) {
    EXPECT_EQ(blockRefusal(service + "Operation-Name=getStatus\r\n\r\nbody"),
              "The header block goes on after its empty line. Send the body "
              "after OvMem_Receive has asked for it.");
}

TEST(RequestHeader, ALineThatIsNoHeaderIsMalformed) {
    EXPECT_EQ(blockRefusal(service + "Locale\r\n\r\n"),
              "The header line 'Locale' is not of the form name=value. Write "
              "every header so, and end it with CR LF.");
    EXPECT_EQ(blockRefusal(service + "=en_GB\r\n\r\n"),
              "The header line '=en_GB' is not of the form name=value. Write "
              "every header so, and end it with CR LF.");
}

TEST(RequestHeader, ANameGivenTwiceIsMalformed) {
    EXPECT_EQ(blockRefusal("A=1\r\nA=1\r\n\r\n"),
              "The header 'A' is given twice. Send it once.");
}

TEST(RequestHeader, AnotherServiceIsMalformed) {
    const std::string text =
        "The request is not for this service. Send the header "
        "Service-Name=OvMEMRequest.";
    EXPECT_EQ(blockRefusal("\r\n"), text);
    EXPECT_EQ(blockRefusal("Operation-Name=getStatus\r\n\r\n"), text);
    EXPECT_EQ(blockRefusal("Service-Name=ovmemrequest\r\n\r\n"), text);
    EXPECT_EQ(blockRefusal("service-name=OvMEMRequest\r\n\r\n"), text);
}

TEST(RequestHeader, AMissingOrUnknownOperationIsMalformed) {
    EXPECT_EQ(blockRefusal(service + "\r\n"),
              "The request names no operation. Send the header Operation-Name "
              "with one of " +
                  names);
    EXPECT_EQ(blockRefusal(service + "Operation-Name=GetEvents\r\n\r\n"),
              "The operation 'GetEvents' is unknown. Send the header "
              "Operation-Name with one of " +
                  names);
    EXPECT_EQ(blockRefusal(service + "Operation-Name=\r\n\r\n"),
              "The operation '' is unknown. Send the header Operation-Name "
              "with one of " +
                  names);
}

TEST(RequestHeader, AnOperationOfAClientNeedsBothIdentities) {
    for (const std::string name :
         {"registerClient", "unregisterClient", "getSharedClients", "getEvents",
          "putEvents"}) {
        const std::string start = service + "Operation-Name=" + name + "\r\n";
        EXPECT_EQ(blockRefusal(start + "Client-ID=pump\r\n\r\n"),
                  "The operation " + name +
                      " needs the header Server-ID. Send it; its value may be "
                      "empty.");
        EXPECT_EQ(blockRefusal(start + "Server-ID=plant\r\n\r\n"),
                  "The operation " + name +
                      " needs the header Client-ID. Send it; its value may be "
                      "empty.");
    }
}

TEST(WholeRequest, TheFirstEmptyLineEndsTheHeaderBlock) {
    const WholeRequest request =
        WholeRequest::split("A=1\r\n\r\nfirst\r\n\r\nsecond");
    EXPECT_EQ(request.headerBlock, "A=1\r\n\r\n");
    EXPECT_EQ(request.body, "first\r\n\r\nsecond");
    EXPECT_EQ(WholeRequest::split("A=1\r\n\r\n").body, "");
}

TEST(WholeRequest, WithoutAnEmptyLineItIsMalformed) {
    EXPECT_EQ(headerRefusal([] { WholeRequest::split("A=1\r\nbody"); }),
              "The request has no empty line after its header block. Close "
              "the header block with CR LF alone.");
}
