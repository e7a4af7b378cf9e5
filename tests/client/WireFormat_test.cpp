#include "OvMemCppBinding/client/WireFormat.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

namespace Orvane::Net::OvModelEventManager::Client::WireFormat {

TEST(WireFormat, SizesAndStatusesAreThoseOfTheService) {
    EXPECT_EQ(receiveBufferSize, 16384u);
    EXPECT_EQ(bodyChunkSize, 4098u);
    EXPECT_EQ(statusSendBody, 19);
    EXPECT_EQ(statusSendNoBody, 20);
    EXPECT_EQ(statusEndOfReply, -1);
    EXPECT_EQ(statusNoText, -3002);
}

TEST(WireFormat, TheServiceNamespaceStandsBesideTheHeaderNames) {
    EXPECT_STREQ(serviceNamespace, "com.orvane.schemas.soa._2006_03.base");
}

TEST(WireFormat, HeadersAreNamedAsTheServiceReadsThem) {
    EXPECT_STREQ(serverIdHeader, "Server-ID");
    EXPECT_STREQ(clientIdHeader, "Client-ID");
    EXPECT_STREQ(operationHeader, "Operation-Name");
    EXPECT_STREQ(logCorrelationHeader, "Log-Correlation-ID");
    EXPECT_STREQ(localeHeader, "Locale");
    EXPECT_STREQ(serviceHeader, "Service-Name");
    EXPECT_STREQ(serviceName, "OvMEMRequest");
}

TEST(WireFormat, ProbesHaveTheLengthTheServiceExpects) {
    EXPECT_EQ(std::strlen(registerClientProbe), 21u);
    EXPECT_EQ(std::strlen(unregisterClientProbe), 23u);
    EXPECT_EQ(std::strlen(getSharedClientsProbe), 26u);
    EXPECT_EQ(std::strlen(getEventsProbe), 18u);
    EXPECT_EQ(std::strlen(getStatusProbe), 18u);
}

}  // namespace Orvane::Net::OvModelEventManager::Client::WireFormat
