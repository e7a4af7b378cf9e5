#include <stdexcept>
#include <string>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/util/DomException.h"
#include "tests/client/ConnectionTest.h"
#include "tests/client/WithoutConverters.h"

// getStatus.

namespace OvMemTest {

class OvMEMConnectionStatus : public ConnectionTest {
protected:
    const Thrown failed{"OvMEMConnectionException", -1,
                        "OvMEM Connection failed"};
};

TEST_F(OvMEMConnectionStatus, TheEchoOfTheProbeIsZero) {
    identify();
    answer("OvMEM Status check");
    EXPECT_EQ(connection.getStatus(), 0);
    EXPECT_EQ(takeTransportCalls(), checking.calls());
}

TEST_F(OvMEMConnectionStatus, AnyOtherReplyIsMinusTwo) {
    identify();
    for (const std::string& reply :
         {std::string("OvMEM Status check\n"),
          std::string("OvMEM Status check\r\n"), std::string(" "),
          std::string("OvMEM Status chec"), std::string("OvMEM Status checK"),
          std::string("OVMEM STATUS CHECK"), std::string("Xvmem Status check"),
          std::string(" OvMEM Status check"), std::string("\0", 1),
          std::string("OvMEM Status check\0", 19),
          std::string("OvMEM Status\0check", 18),
          std::string("OvMEM Status checkOvMEM Status check"),
          std::string("<status/>"), std::string(16384, 'O')}) {
        answer(reply);
        EXPECT_EQ(connection.getStatus(), -2) << reply;
        EXPECT_EQ(takeTransportCalls(), checking.calls());
    }
}

TEST_F(OvMEMConnectionStatus, AnEmptyReplyIsMinusTwo) {
    identify();
    transport.receive(20).reply("");
    EXPECT_EQ(connection.getStatus(), -2);
    EXPECT_EQ(takeTransportCalls(),
              (Calls{checking.headers(), "OvMem_SendEOF()", "OvMem_Receive()",
                     "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMConnectionStatus, AnEchoInPiecesIsZero) {
    identify();
    transport.receive(20).chunk("OvMEM ").chunk("Status").chunk(" check");
    transport.receive(-1);
    EXPECT_EQ(connection.getStatus(), 0);
    EXPECT_EQ(takeTransportCalls(),
              (Calls{checking.headers(), "OvMem_SendEOF()", "OvMem_Receive()",
                     "OvMem_Receive()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMConnectionStatus, NeedsNoRegistration) {
    ovMemStartedOf(connection) = true;
    answer("OvMEM Status check");
    EXPECT_EQ(connection.getStatus(), 0);
    Exchange anonymous = checking;
    anonymous.localeLine = "";
    EXPECT_EQ(takeTransportCalls(), anonymous.calls());
    EXPECT_EQ(identity(), (Texts{"", "", ""}));
}

TEST_F(OvMEMConnectionStatus, SendsNoIdentityAlsoWhenRegistered) {
    identify();
    answer("OvMEM Status check");
    connection.getStatus();
    EXPECT_EQ(takeTransportCalls().front(),
              R"(OvMem_SendNoAck("Caller-Action=a1\r\nLocale=en_GB\r\n)"
              R"(Log-Correlation-ID=OvMEMConnection.getStatus\r\n)"
              R"(Operation-Name=getStatus\r\nRequest-ID=r1\r\n)"
              R"(Service-Name=OvMEMRequest\r\nSession-ID=s1\r\n\r\n"))");
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
}

TEST_F(OvMEMConnectionStatus, AFailingStartIsAFailedConnectionToo) {
    transport.init(1003).lastError(0, "no transport");
    EXPECT_EQ(thrownBy([this] { connection.getStatus(); }), failed);
    EXPECT_FALSE(ovMemStartedOf(connection));
    EXPECT_EQ(transport.takeCalls(), (Calls{start, "OvMem_GetLastError()"}));
}

TEST_F(OvMEMConnectionStatus, AFailureLeavesItUsable) {
    identify();
    transport.receive(-3001).lastError(0, "gone");
    EXPECT_EQ(thrownBy([this] { connection.getStatus(); }), failed);
    EXPECT_EQ(takeTransportCalls(),
              (Calls{checking.headers(), "OvMem_SendEOF()", "OvMem_Receive()",
                     "OvMem_GetLastError()"}));
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    answer("OvMEM Status check");
    EXPECT_EQ(connection.getStatus(), 0);
    EXPECT_EQ(takeTransportCalls(), checking.calls());
}

TEST_F(OvMEMConnectionStatus, ABrokenTransportIsAFailedConnectionToo) {
    identify();
    transport.receive(20).receive(16385);
    EXPECT_EQ(thrownBy([this] { connection.getStatus(); }), failed);
    EXPECT_EQ(takeTransportCalls(),
              (Calls{checking.headers(), "OvMem_SendEOF()", "OvMem_Receive()",
                     "OvMem_Receive()"}));
}

TEST_F(OvMEMConnectionStatus, AFailedConversionIsAFailedConnectionToo) {
    identify();
    withoutConverters([this] {
        EXPECT_EQ(thrownBy([this] { connection.getStatus(); }), failed);
        EXPECT_EQ(takeTransportCalls(), Calls{});
    });
}

TEST_F(OvMEMConnectionStatus, EveryClientExceptionIsReplaced) {
    namespace Client = Orvane::Net::OvModelEventManager::Client;
    identify();
    const std::function<void()> throwers[] = {
        [] { throw Client::Exception(7, "own"); },
        [] { throw Client::OvMEMException("own"); },
        [] { throw Client::OvMEMRuntimeException("own"); },
        [] { throw Client::OvMEMConnectionException(-9, "own"); },
    };
    for (const auto& thrower : throwers) {
        logging.onGet = thrower;
        EXPECT_EQ(thrownBy([this] { connection.getStatus(); }), failed);
        EXPECT_EQ(transport.takeCalls(), (Calls{"LogCorrelation::get()"}));
    }
}

TEST_F(OvMEMConnectionStatus, ExceptionsOfOtherKindsPassUnchanged) {
    using Orvane::Net::OvModelEventManager::Util::DomException;
    identify();
    logging.onGet = [] { throw std::runtime_error("disk"); };
    EXPECT_EQ(thrownBy([this] { connection.getStatus(); }),
              (Thrown{"runtime_error", 0, "disk"}));
    logging.onGet = [] { throw DomException("document"); };
    EXPECT_EQ(thrownBy([this] { connection.getStatus(); }),
              (Thrown{"DomException", 0, "document"}));
    logging.onGet = [] { throw 7; };
    EXPECT_EQ(thrownBy([this] { connection.getStatus(); }),
              (Thrown{"int", 0, ""}));
    const Calls once{"LogCorrelation::get()"};
    EXPECT_EQ(transport.takeCalls(), once + once + once);
}

}  // namespace OvMemTest
