#include "OvMemCppBinding/client/OvMEMConnection.h"

#include <memory>
#include <string>
#include <type_traits>

#include <xercesc/util/PlatformUtils.hpp>

#include "tests/client/ConnectionTest.h"
#include "tests/client/FaultTable.h"
#include "tests/support/RunInChild.h"
#include "tests/support/SystemCheck.h"

// Construction, copying, the XML platform, and the start and end of the
// transport.

namespace OvMemTest {

static_assert(!std::is_polymorphic_v<OvMEMConnection>);
static_assert(std::is_same_v<OvMEMConnection&,
                             decltype(std::declval<OvMEMConnection&>() =
                                          std::declval<OvMEMConnection>())>);

using OvMEMConnectionState = ConnectionTest;

TEST_F(OvMEMConnectionState, ANewConnectionIsEmptyAndHasCalledNobody) {
    EXPECT_EQ(identity(), (Texts{"", "", ""}));
    EXPECT_FALSE(reservedOf(connection));
    EXPECT_FALSE(ovMemStartedOf(connection));
    EXPECT_FALSE(isClientRegistered(connection));
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMConnectionState, TheServerIdentityAloneMakesItRegistered) {
    clientIdOf(connection) = "pump";
    localeOf(connection) = "en_GB";
    EXPECT_FALSE(isClientRegistered(connection));
    serverIdOf(connection) = "plant";
    clientIdOf(connection) = "";
    EXPECT_TRUE(isClientRegistered(connection));
}

TEST_F(OvMEMConnectionState, ACopyHasEveryField) {
    identify();
    reservedOf(connection) = true;
    OvMEMConnection copy(connection);
    EXPECT_EQ(serverIdOf(copy), "plant");
    EXPECT_EQ(clientIdOf(copy), "pump");
    EXPECT_EQ(localeOf(copy), "en_GB");
    EXPECT_TRUE(reservedOf(copy));
    EXPECT_TRUE(ovMemStartedOf(copy));
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMConnectionState, AssignmentReplacesEveryField) {
    identify();
    reservedOf(connection) = true;
    OvMEMConnection other;
    OvMEMConnection& result = connection = other;
    EXPECT_EQ(&result, &connection);
    EXPECT_EQ(identity(), (Texts{"", "", ""}));
    EXPECT_FALSE(reservedOf(connection));
    EXPECT_FALSE(ovMemStartedOf(connection));
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMConnectionState, SelfAssignmentChangesNothing) {
    identify();
    OvMEMConnection& same = connection;
    connection = same;
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_TRUE(ovMemStartedOf(connection));
}

TEST_F(OvMEMConnectionState, ACopyIsIndependentOfItsSource) {
    identify();
    OvMEMConnection copy(connection);
    serverIdOf(copy) = "other";
    ovMemStartedOf(copy) = false;
    EXPECT_EQ(identity(), (Texts{"plant", "pump", "en_GB"}));
    EXPECT_TRUE(ovMemStartedOf(connection));
}

// The XML platform.

class OvMEMConnectionPlatform : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(xmlPlatformRuns()); }
    void TearDown() override { EXPECT_FALSE(xmlPlatformRuns()); }
};

TEST_F(OvMEMConnectionPlatform, RunsWhileAConnectionLives) {
    {
        const OvMEMConnection connection;
        EXPECT_TRUE(xmlPlatformRuns());
    }
    EXPECT_FALSE(xmlPlatformRuns());
    const OvMEMConnection again;
    EXPECT_TRUE(xmlPlatformRuns());
}

// docs/irregularities.md#first-destroyed-ends-the-platform
TEST_F(OvMEMConnectionPlatform, FirstDestroyedEndsThePlatform) {
    auto first = std::make_unique<OvMEMConnection>();
    auto second = std::make_unique<OvMEMConnection>();
    EXPECT_TRUE(xmlPlatformRuns());
    first.reset();
    EXPECT_FALSE(xmlPlatformRuns());
    second.reset();
    EXPECT_FALSE(xmlPlatformRuns());
}

TEST_F(OvMEMConnectionPlatform, ALaterConnectionStartsItAgainForAll) {
    auto first = std::make_unique<OvMEMConnection>();
    auto second = std::make_unique<OvMEMConnection>();
    first.reset();
    auto third = std::make_unique<OvMEMConnection>();
    EXPECT_TRUE(xmlPlatformRuns());
    second.reset();
    EXPECT_FALSE(xmlPlatformRuns());
    third.reset();
    EXPECT_FALSE(xmlPlatformRuns());
}

TEST_F(OvMEMConnectionPlatform, ACopyThatIsDestroyedFirstEndsItToo) {
    const OvMEMConnection original;
    { const OvMEMConnection copy(original); }
    EXPECT_FALSE(xmlPlatformRuns());
}

TEST_F(OvMEMConnectionPlatform, CopyingAndAssigningDoNotStartIt) {
    OvMEMConnection original;
    { const OvMEMConnection shortLived; }
    const OvMEMConnection copy(original);
    original = copy;
    EXPECT_FALSE(xmlPlatformRuns());
}

TEST_F(OvMEMConnectionPlatform, StaysForAnApplicationThatStartedItItself) {
    runInChild([] {
        xercesc::XMLPlatformUtils::Initialize();
        { const OvMEMConnection connection; }
        EXPECT_TRUE(xmlPlatformRuns());
        xercesc::XMLPlatformUtils::Terminate();
        EXPECT_FALSE(xmlPlatformRuns());
    });
}

// docs/irregularities.md#first-destroyed-ends-the-platform
TEST_F(OvMEMConnectionState, FirstDestroyedEndsThePlatformUnderTheReplies) {
    identify();
    const Thrown ended{"DomException", 0,
                       "XML parser platform is not initialised"};
    { const OvMEMConnection shortLived; }
    answer(listing({"valve"}));
    EXPECT_EQ(thrownBy([this] { connection.getSharedClients(shared); }), ended);
    EXPECT_EQ(takeTransportCalls(), askingWhoShares.calls());
    EXPECT_EQ(shared, (Texts{"before"}));

    answer("OvMEM Status check");
    EXPECT_EQ(connection.getStatus(), 0);
    EXPECT_EQ(takeTransportCalls(), checking.calls());

    const OvMEMConnection another;
    answer(listing({"valve"}));
    connection.getSharedClients(shared);
    EXPECT_EQ(takeTransportCalls(), askingWhoShares.calls());
    EXPECT_EQ(shared, (Texts{"before", "valve"}));
}

// The transport.

using OvMEMConnectionTransport = ConnectionTest;

TEST_F(OvMEMConnectionTransport, IsStartedOnceWithTheHeapOfTheProcess) {
    initOvMem(connection);
    EXPECT_TRUE(ovMemStartedOf(connection));
    EXPECT_EQ(transport.takeCalls(), (Calls{"OvMem_Init(malloc, free)"}));
    initOvMem(connection);
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMConnectionTransport, AnyStatusOfTheStartButZeroIsAnError) {
    for (const Fault& fault : faultTable) {
        transport.init(fault.status).lastError(0, "no transport");
        EXPECT_EQ(thrownBy([this] { initOvMem(connection); }),
                  (Thrown{fault.type, 0, "no transport"}))
            << fault.status;
        EXPECT_FALSE(ovMemStartedOf(connection));
        EXPECT_EQ(transport.takeCalls(),
                  (Calls{start, "OvMem_GetLastError()"}));
    }
    initOvMem(connection);
    EXPECT_TRUE(ovMemStartedOf(connection));
    EXPECT_EQ(transport.takeCalls(), (Calls{start}));
}

TEST_F(OvMEMConnectionTransport, IsNotEndedUnlessStarted) {
    termOvMem(connection);
    EXPECT_FALSE(ovMemStartedOf(connection));
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMConnectionTransport, IsEndedOnceAndCanBeStartedAgain) {
    initOvMem(connection);
    termOvMem(connection);
    EXPECT_FALSE(ovMemStartedOf(connection));
    termOvMem(connection);
    initOvMem(connection);
    EXPECT_TRUE(ovMemStartedOf(connection));
    EXPECT_EQ(transport.takeCalls(), (Calls{start, "OvMem_Term()", start}));
}

TEST_F(OvMEMConnectionTransport, AFailedEndLeavesItStarted) {
    ovMemStartedOf(connection) = true;
    for (const Fault& fault : faultTable) {
        if (fault.status > 0) {
            continue;
        }
        transport.term(fault.status).lastError(0, "still busy");
        EXPECT_EQ(thrownBy([this] { termOvMem(connection); }),
                  (Thrown{fault.type, 0, "still busy"}))
            << fault.status;
        EXPECT_TRUE(ovMemStartedOf(connection));
        EXPECT_EQ(transport.takeCalls(),
                  (Calls{"OvMem_Term()", "OvMem_GetLastError()"}));
    }
}

TEST_F(OvMEMConnectionTransport, APositiveStatusOfTheEndIsNoError) {
    for (const int status : {1, 1001, 1002, 1003}) {
        ovMemStartedOf(connection) = true;
        transport.term(status);
        termOvMem(connection);
        EXPECT_FALSE(ovMemStartedOf(connection));
        EXPECT_EQ(transport.takeCalls(), (Calls{"OvMem_Term()"}));
    }
}

TEST_F(OvMEMConnectionTransport, ACopyTakesItForStartedAndEndsItOnItsOwn) {
    initOvMem(connection);
    OvMEMConnection copy(connection);
    initOvMem(copy);
    answer("OvMEM Status check");
    EXPECT_EQ(copy.getStatus(), 0);
    Exchange anonymous = checking;
    anonymous.localeLine = "";
    EXPECT_EQ(takeTransportCalls(), Calls{start} + anonymous.calls());
    termOvMem(connection);
    EXPECT_TRUE(ovMemStartedOf(copy));
    termOvMem(copy);
    EXPECT_EQ(transport.takeCalls(), (Calls{"OvMem_Term()", "OvMem_Term()"}));
}

TEST_F(OvMEMConnectionTransport, EveryConnectionStartsItForItself) {
    OvMEMConnection other;
    initOvMem(connection);
    initOvMem(other);
    EXPECT_EQ(transport.takeCalls(), (Calls{start, start}));
}

TEST_F(OvMEMConnectionTransport, TheDestructorDoesNotEndIt) {
    {
        OvMEMConnection shortLived;
        initOvMem(shortLived);
    }
    EXPECT_EQ(transport.takeCalls(), (Calls{start}));
}

TEST_F(OvMEMConnectionTransport, TheFirstRequestStartsItAndLaterOnesDoNot) {
    Exchange anonymous = checking;
    anonymous.localeLine = "";
    answer("OvMEM Status check");
    connection.getStatus();
    EXPECT_EQ(takeTransportCalls(), Calls{start} + anonymous.calls());
    answer("OvMEM Status check");
    connection.getStatus();
    EXPECT_EQ(takeTransportCalls(), anonymous.calls());
}

}  // namespace OvMemTest
