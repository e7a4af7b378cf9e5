#include "tests/support/ScriptedTransport.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/LogCorrelation.h"
#include "tests/support/ScriptedLogging.h"

namespace OvMemTest {

using Calls = ScriptedTransport::Calls;
using Orvane::Common::Logging::LogCorrelation;

class ScriptedTransportTest : public ::testing::Test {
protected:
    using Texts = std::vector<std::string>;

    Texts takeFailures() { return std::exchange(failures, {}); }

    Texts failures;
    std::unique_ptr<ScriptedTransport> transport =
        std::make_unique<ScriptedTransport>(
            [this](const std::string& what) { failures.push_back(what); });
    char buffer[16384] = {};
};

TEST_F(ScriptedTransportTest, AnswersInTheOrderOfTheCallsOfEachFunction) {
    transport->sendEof(3).send(-1).sendEof(4).receive(19).receive(20);
    EXPECT_EQ(OvMem_SendEOF(), 3);
    EXPECT_EQ(OvMem_Receive(buffer), 19);
    EXPECT_EQ(OvMem_SendEOF(), 4);
    EXPECT_EQ(OvMem_Receive(buffer), 20);
    EXPECT_EQ(OvMem_Send("text"), -1);
    EXPECT_EQ(transport->takeCalls(),
              (Calls{"OvMem_SendEOF()", "OvMem_Receive()", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Send(\"text\")"}));
    EXPECT_EQ(transport->takeCalls(), Calls{});
    EXPECT_EQ(takeFailures(), Texts{});
}

TEST_F(ScriptedTransportTest, GivesTheOrdinaryAnswerBeyondTheScript) {
    EXPECT_EQ(OvMem_Init(std::malloc, std::free), 0);
    EXPECT_EQ(OvMem_Send("a"), 0);
    EXPECT_EQ(OvMem_SendNoAck(nullptr), 1);
    EXPECT_EQ(OvMem_SendEOF(), 0);
    EXPECT_EQ(OvMem_Complete(), 0);
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_EQ(transport->takeCalls(),
              (Calls{"OvMem_Init(malloc, free)", "OvMem_Send(\"a\")",
                     "OvMem_SendNoAck(null)", "OvMem_SendEOF()",
                     "OvMem_Complete()", "OvMem_Term()"}));
    EXPECT_EQ(takeFailures(), Texts{});
}

TEST_F(ScriptedTransportTest, TellsWrappersFromTheHeapItself) {
    OvMem_Init([](std::size_t size) { return std::malloc(size); },
               [](void* block) { std::free(block); });
    EXPECT_EQ(transport->takeCalls(),
              (Calls{"OvMem_Init(not malloc, not free)"}));
}

TEST_F(ScriptedTransportTest, ReceiveFillsTheWholeBuffer) {
    transport->chunk(std::string("a\0b", 3)).receive(19, "x");
    EXPECT_EQ(OvMem_Receive(buffer), 3);
    EXPECT_EQ(std::string(buffer, 4), std::string("a\0b\xA5", 4));
    EXPECT_EQ(buffer[16383], '\xA5');
    EXPECT_EQ(OvMem_Receive(buffer), 19);
    EXPECT_EQ(std::string(buffer, 3), "x\xA5\xA5");
    transport->takeCalls();
}

TEST_F(ScriptedTransportTest, CutsAReplyIntoPiecesOfTheBufferSize) {
    transport->reply(std::string(16385, 'r')).reply("");
    EXPECT_EQ(OvMem_Receive(buffer), 16384);
    EXPECT_EQ(OvMem_Receive(buffer), 1);
    EXPECT_EQ(OvMem_Receive(buffer), -1);
    EXPECT_EQ(OvMem_Receive(buffer), -1);
    transport->takeCalls();
    EXPECT_EQ(takeFailures(), Texts{});
}

TEST_F(ScriptedTransportTest, TakesAReplyFromItsSourceBehindTheScript) {
    Texts pieces{"first", "", "last"};
    transport->receive(20).replyFrom([&]() -> std::optional<std::string> {
        if (pieces.empty()) {
            return {};
        }
        const std::string piece = pieces.front();
        pieces.erase(pieces.begin());
        return piece;
    });
    EXPECT_EQ(OvMem_Receive(buffer), 20);
    EXPECT_EQ(OvMem_Receive(buffer), 5);
    EXPECT_EQ(std::string(buffer, 6), "first\xA5");
    EXPECT_EQ(OvMem_Receive(buffer), 0);
    EXPECT_EQ(OvMem_Receive(buffer), 4);
    EXPECT_EQ(std::string(buffer, 5), "last\xA5");
    EXPECT_EQ(OvMem_Receive(buffer), -1);
    EXPECT_EQ(takeFailures(), Texts{});
    EXPECT_EQ(OvMem_Receive(buffer), -1);
    EXPECT_EQ(takeFailures(),
              (Texts{"Nobody scripted an answer to OvMem_Receive()"}));
    transport->takeCalls();
}

TEST_F(ScriptedTransportTest, HandsOutTheLastErrorAndTakesItBack) {
    transport->lastError(7, "first").lastError(0, std::nullopt);
    const char* text = nullptr;
    EXPECT_EQ(OvMem_GetLastError(&text), 7);
    EXPECT_STREQ(text, "first");
    text = nullptr;
    EXPECT_EQ(OvMem_GetLastError(&text), 0);
    EXPECT_EQ(text, nullptr);
    transport->takeCalls();
    EXPECT_EQ(takeFailures(), Texts{});
}

TEST_F(ScriptedTransportTest, ReportsACallThatNobodyScripted) {
    const char* text = nullptr;
    EXPECT_EQ(OvMem_Receive(buffer), -1);
    EXPECT_EQ(OvMem_GetLastError(&text), -1);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(takeFailures(),
              (Texts{"Nobody scripted an answer to OvMem_Receive()",
                     "Nobody scripted an answer to OvMem_GetLastError()"}));
    transport->takeCalls();
}

TEST_F(ScriptedTransportTest, ReportsAtItsEndWhatIsLeft) {
    transport->receive(19).complete(-5).replyFrom([] { return "more"; });
    OvMem_SendEOF();
    transport.reset();
    EXPECT_EQ(takeFailures(),
              (Texts{"Nobody fetched the answer 19 of OvMem_Receive",
                     "Nobody fetched the answer -5 of OvMem_Complete",
                     "Nobody fetched the end of the reply",
                     "Nobody looked at the call OvMem_SendEOF()"}));
}

TEST_F(ScriptedTransportTest, ReportsAPieceThatFitsNoBuffer) {
    transport->receive(16385, std::string(16385, 'r'));
    EXPECT_EQ(OvMem_Receive(buffer), 16385);
    EXPECT_EQ(takeFailures(),
              (Texts{"OvMem_Receive was scripted to write 16385 bytes"}));
    transport->takeCalls();
}

TEST_F(ScriptedTransportTest, ALaterOneStandsInFrontUntilItsEnd) {
    {
        ScriptedTransport inner(
            [this](const std::string& what) { failures.push_back(what); });
        inner.sendEof(5);
        EXPECT_EQ(OvMem_SendEOF(), 5);
        EXPECT_EQ(inner.takeCalls(), (Calls{"OvMem_SendEOF()"}));
    }
    transport->sendEof(6);
    EXPECT_EQ(OvMem_SendEOF(), 6);
    EXPECT_EQ(transport->takeCalls(), (Calls{"OvMem_SendEOF()"}));
    EXPECT_EQ(takeFailures(), Texts{});
}

TEST_F(ScriptedTransportTest, TheLoggingEntersTheSameRecord) {
    ScriptedLogging logging(*transport);
    logging.requestId = "r";
    logging.sessionId = "s";
    logging.userAction = "a";
    OvMem_SendEOF();
    const LogCorrelation* log = LogCorrelation::get();
    EXPECT_EQ(log->getUserAction() + log->getSessionID() + log->getRequestID(),
              "asr");
    EXPECT_EQ(LogCorrelation::get(), log);
    const Calls calls = transport->takeCalls();
    ASSERT_EQ(calls.size(), 6u);
    EXPECT_EQ(calls[0], "OvMem_SendEOF()");
    EXPECT_EQ(calls[1], "LogCorrelation::get()");
    EXPECT_EQ(calls[5], "LogCorrelation::get()");
}

TEST_F(ScriptedTransportTest, IsNotAtWorkBetweenCalls) {
    EXPECT_FALSE(ScriptedTransport::working());
    OvMem_SendEOF();
    EXPECT_FALSE(ScriptedTransport::working());
    transport->takeCalls();
}

}  // namespace OvMemTest
