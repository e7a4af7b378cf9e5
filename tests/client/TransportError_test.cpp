#include "OvMemCppBinding/client/TransportError.h"

#include <optional>
#include <set>
#include <string>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/client/FaultTable.h"
#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"

namespace Orvane::Net::OvModelEventManager::Client {

using namespace OvMemTest;

class TransportError : public ScriptedPlatformTest {
protected:
    const Calls oneQuestion{"OvMem_GetLastError()"};
};

TEST_F(TransportError, EveryStatusChoosesItsClassWithTypeZero) {
    for (const Fault& fault : faultTable) {
        transport.lastError(0, "what went wrong");
        EXPECT_EQ(thrownBy([&] { throwTransportError(fault.status); }),
                  (Thrown{fault.type, 0, "what went wrong"}))
            << fault.status;
        EXPECT_EQ(transport.takeCalls(), oneQuestion);
    }
}

TEST_F(TransportError, ZeroIsUnrecognisedLikeAnyOther) {
    transport.lastError(0, "nothing is wrong");
    EXPECT_EQ(thrownBy([] { throwTransportError(0); }),
              (Thrown{"OvMEMUnrecognisedException", 0, "nothing is wrong"}));
    EXPECT_EQ(transport.takeCalls(), oneQuestion);
}

TEST_F(TransportError, TheTableHoldsFourteenDifferentStatuses) {
    std::set<int> statuses;
    for (const TransportErrorRow& row : transportErrorTable) {
        statuses.insert(row.status);
    }
    EXPECT_EQ(statuses.size(), 14u);
    EXPECT_EQ(transportErrorTable.size(), 14u);
}

TEST_F(TransportError, TheResultOfTheQuestionDoesNotChooseTheClass) {
    transport.lastError(-3001, std::nullopt);
    EXPECT_EQ(thrownBy([] { throwTransportError(-3016); }),
              (Thrown{"OvMEMRuntimeException", 0,
                      "Could not retrieve last error message."}));
    EXPECT_EQ(transport.takeCalls(), oneQuestion);
}

TEST_F(TransportError, ARequestThrowsTheSame) {
    for (const Fault& fault : faultTable) {
        transport.lastError(0, "what went wrong");
        OvMEMRequest request;
        EXPECT_EQ(thrownBy([&] { request.throwTransportError(fault.status); }),
                  (Thrown{fault.type, 0, "what went wrong"}))
            << fault.status;
        EXPECT_EQ(transport.takeCalls(), oneQuestion);
    }
}

// The four answers to the question what the last error was, in each way that
// it is asked.

struct Answer {
    int status;
    std::optional<std::string> text;
    std::string message;
};

class LastErrorMessage : public TransportError,
                         public ::testing::WithParamInterface<Answer> {};

TEST_P(LastErrorMessage, IsChosenByTextAndResult) {
    transport.lastError(GetParam().status, GetParam().text);
    EXPECT_EQ(lastTransportErrorMessage(), GetParam().message);
    EXPECT_EQ(transport.takeCalls(), oneQuestion);
}

TEST_P(LastErrorMessage, IsWhatTheRequestGives) {
    transport.lastError(GetParam().status, GetParam().text);
    EXPECT_EQ(OvMEMRequest().getLastErrorMessage(), GetParam().message);
    EXPECT_EQ(transport.takeCalls(), oneQuestion);
}

TEST_P(LastErrorMessage, IsWhatTheExceptionBears) {
    transport.lastError(GetParam().status, GetParam().text);
    EXPECT_EQ(thrownBy([] { throwTransportError(-3017); }),
              (Thrown{"OvMEMProtocolException", 0, GetParam().message}));
    EXPECT_EQ(transport.takeCalls(), oneQuestion);
}

// The text of a failed call counts for nothing:
// docs/irregularities.md#message-of-a-failed-call
INSTANTIATE_TEST_SUITE_P(
    MessageOfAFailedCall, LastErrorMessage,
    ::testing::Values(
        Answer{1, std::nullopt, "Could not retrieve last error message."},
        Answer{-1, std::nullopt, "Could not retrieve last error message."},
        Answer{-3001, std::nullopt, "Could not retrieve last error message."},
        Answer{1, "ignored", ""}, Answer{-1, "ignored", ""},
        Answer{-3001, "", ""}));

INSTANTIATE_TEST_SUITE_P(
    MessageOfASuccessfulCall, LastErrorMessage,
    ::testing::Values(Answer{0, std::nullopt, "No error message received"},
                      Answer{0, "", ""},
                      Answer{0, "line 1\nline 2\n", "line 1\nline 2\n"},
                      Answer{0, "\xE9\xFF", "\xE9\xFF"},
                      Answer{0, std::string(100000, 'x'),
                             std::string(100000, 'x')}));

TEST_F(TransportError, TheMessageOutlivesTheTextOfTheTransport) {
    transport.lastError(0, "first").lastError(0, "second");
    const std::string first = lastTransportErrorMessage();
    const std::string second = lastTransportErrorMessage();
    EXPECT_EQ(first, "first");
    EXPECT_EQ(second, "second");
    EXPECT_EQ(transport.takeCalls(),
              (Calls{"OvMem_GetLastError()", "OvMem_GetLastError()"}));
}

}  // namespace Orvane::Net::OvModelEventManager::Client
