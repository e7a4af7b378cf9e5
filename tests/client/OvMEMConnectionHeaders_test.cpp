#include <string>

#include "tests/client/ConnectionTest.h"

// What setRequestHeader puts into a request, and whom it asks in which order.

namespace OvMemTest {

class OvMEMConnectionHeaders : public ConnectionTest {
protected:
    // The block of a request prepared by the connection.
    std::string block(std::string operation, std::string correlationId,
                      bool withIdentity) {
        OvMEMRequest request;
        setRequestHeader(connection, request, operation, correlationId,
                         withIdentity);
        return request.buildHeaderBlock();
    }

    const Calls asking{
        "LogCorrelation::get()", "LogCorrelation::getRequestID()",
        "LogCorrelation::getSessionID()", "LogCorrelation::getUserAction()"};
};

TEST_F(OvMEMConnectionHeaders, AreSortedByNameWithThoseOfTheLogging) {
    identify();
    EXPECT_EQ(block("anOperation", "aCorrelation", true),
              "Caller-Action=a1\r\n"
              "Client-ID=pump\r\n"
              "Locale=en_GB\r\n"
              "Log-Correlation-ID=aCorrelation\r\n"
              "Operation-Name=anOperation\r\n"
              "Request-ID=r1\r\n"
              "Server-ID=plant\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=s1\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

TEST_F(OvMEMConnectionHeaders, WithoutIdentityNeitherPartOfItIsSent) {
    identify();
    EXPECT_EQ(block("o", "c", false),
              "Caller-Action=a1\r\n"
              "Locale=en_GB\r\n"
              "Log-Correlation-ID=c\r\n"
              "Operation-Name=o\r\n"
              "Request-ID=r1\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=s1\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

TEST_F(OvMEMConnectionHeaders, AnEmptyLocaleIsNotSent) {
    identify();
    localeOf(connection) = "";
    EXPECT_EQ(block("o", "c", true),
              "Caller-Action=a1\r\n"
              "Client-ID=pump\r\n"
              "Log-Correlation-ID=c\r\n"
              "Operation-Name=o\r\n"
              "Request-ID=r1\r\n"
              "Server-ID=plant\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=s1\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

TEST_F(OvMEMConnectionHeaders, EverythingElseIsSentAlsoWhenEmpty) {
    ovMemStartedOf(connection) = true;
    logging.requestId = logging.sessionId = logging.userAction = "";
    EXPECT_EQ(block("", "", true),
              "Caller-Action=\r\n"
              "Client-ID=\r\n"
              "Log-Correlation-ID=\r\n"
              "Operation-Name=\r\n"
              "Request-ID=\r\n"
              "Server-ID=\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

// docs/irregularities.md#nul-cuts-the-text
TEST_F(OvMEMConnectionHeaders, NulCutsTheTextOfEveryValue) {
    identify();
    const std::string cut("x\0y", 3);
    serverIdOf(connection) = clientIdOf(connection) = cut;
    localeOf(connection) = cut;
    logging.requestId = logging.sessionId = logging.userAction = cut;
    EXPECT_EQ(block(cut, cut, true),
              "Caller-Action=x\r\n"
              "Client-ID=x\r\n"
              "Locale=x\r\n"
              "Log-Correlation-ID=x\r\n"
              "Operation-Name=x\r\n"
              "Request-ID=x\r\n"
              "Server-ID=x\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=x\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

TEST_F(OvMEMConnectionHeaders, ALocaleThatBeginsWithNulIsSentAsEmpty) {
    identify();
    localeOf(connection) = std::string("\0x", 2);
    EXPECT_EQ(block("o", "c", false),
              "Caller-Action=a1\r\n"
              "Locale=\r\n"
              "Log-Correlation-ID=c\r\n"
              "Operation-Name=o\r\n"
              "Request-ID=r1\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=s1\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

// docs/irregularities.md#null-is-sent-as-empty
TEST_F(OvMEMConnectionHeaders, NullIsSentAsEmptyInEveryValue) {
    identify();
    serverIdOf(connection) = clientIdOf(connection) = "null";
    localeOf(connection) = "null";
    logging.requestId = logging.sessionId = logging.userAction = "null";
    EXPECT_EQ(block("null", "null", true),
              "Caller-Action=\r\n"
              "Client-ID=\r\n"
              "Locale=\r\n"
              "Log-Correlation-ID=\r\n"
              "Operation-Name=\r\n"
              "Request-ID=\r\n"
              "Server-ID=\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

TEST_F(OvMEMConnectionHeaders, TheTransportIsStartedBeforeTheLoggingIsAsked) {
    block("o", "c", true);
    EXPECT_TRUE(ovMemStartedOf(connection));
    EXPECT_EQ(transport.takeCalls(), Calls{start} + asking);
    block("o", "c", true);
    EXPECT_EQ(transport.takeCalls(), asking);
}

TEST_F(OvMEMConnectionHeaders, AFailedStartSetsNoHeaderAndAsksNobody) {
    transport.init(1002).lastError(0, "no transport");
    OvMEMRequest request;
    std::string operation = "o";
    EXPECT_EQ(thrownBy([&] {
                  setRequestHeader(connection, request, operation, correlation,
                                   true);
              }),
              (Thrown{"OvMEMProtocolException", 0, "no transport"}));
    EXPECT_EQ(request.buildHeaderBlock(), "\r\n");
    EXPECT_FALSE(ovMemStartedOf(connection));
    EXPECT_EQ(transport.takeCalls(), (Calls{start, "OvMem_GetLastError()"}));
}

TEST_F(OvMEMConnectionHeaders, NothingElseOfTheConnectionOrTheTextsChanges) {
    identify();
    OvMEMRequest request;
    std::string operation = "o";
    setRequestHeader(connection, request, operation, correlation, true);
    EXPECT_EQ(operation, "o");
    EXPECT_EQ(correlation, "night-run");
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_EQ(transport.takeCalls(), asking);
}

TEST_F(OvMEMConnectionHeaders, TheLoggingIsAskedAnewForEveryRequest) {
    identify();
    logging.onGet = [this] {
        logging.requestId = "r2";
        logging.sessionId = "s2";
        logging.userAction = "a2";
    };
    EXPECT_EQ(block("o", "c", false),
              "Caller-Action=a2\r\n"
              "Locale=en_GB\r\n"
              "Log-Correlation-ID=c\r\n"
              "Operation-Name=o\r\n"
              "Request-ID=r2\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=s2\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

TEST_F(OvMEMConnectionHeaders, AnOperationAsksTheLoggingBeforeItSends) {
    identify();
    answer("OvMEM Status check");
    EXPECT_EQ(connection.getStatus(), 0);
    EXPECT_EQ(transport.takeCalls(), asking + checking.calls());
}

TEST_F(OvMEMConnectionHeaders, AnyByteButNulPassesThroughAnIdentity) {
    serverIdOf(connection) = "a=b\r\nInjected: \xC3\xA9";
    ovMemStartedOf(connection) = true;
    EXPECT_EQ(block("o", "c", true),
              "Caller-Action=a1\r\n"
              "Client-ID=\r\n"
              "Log-Correlation-ID=c\r\n"
              "Operation-Name=o\r\n"
              "Request-ID=r1\r\n"
              "Server-ID=a=b\r\nInjected: \xC3\xA9\r\n"
              "Service-Name=OvMEMRequest\r\n"
              "Session-ID=s1\r\n"
              "\r\n");
    EXPECT_EQ(transport.takeCalls(), asking);
}

}  // namespace OvMemTest
