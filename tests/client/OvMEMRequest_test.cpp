#include "OvMemCppBinding/client/OvMEMRequest.h"

#include <sstream>
#include <string>

#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"

// Content, single-send mode and the steps of an exchange one by one. Streaming
// and replies have files of their own.

namespace Orvane::Net::OvModelEventManager::Client {

using namespace OvMemTest;

class OvMEMRequestTest : public ScriptedPlatformTest {
protected:
    const Thrown noStream{"OvMEMProtocolException", 0,
                          "Failed to read the request stream."};
    OvMEMRequest request;
};

// Headers.

using OvMEMRequestHeaders = OvMEMRequestTest;

TEST_F(OvMEMRequestHeaders, NoHeaderAtAllIsAnEmptyLine) {
    EXPECT_EQ(request.buildHeaderBlock(), "\r\n");
}

TEST_F(OvMEMRequestHeaders, EachIsALineAndAnEmptyLineClosesTheBlock) {
    request.setHeader("Name", "value");
    EXPECT_EQ(request.buildHeaderBlock(), "Name=value\r\n\r\n");
    request.setHeader("Other", "");
    EXPECT_EQ(request.buildHeaderBlock(), "Name=value\r\nOther=\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, AreSortedByNameWhateverTheOrderOfSetting) {
    request.setHeader("b", "1");
    request.setHeader("a", "2");
    request.setHeader("B", "3");
    request.setHeader("a-", "4");
    request.setHeader("", "5");
    request.setHeader("\xC3\xA9", "6");
    request.setHeader("ab", "7");
    EXPECT_EQ(request.buildHeaderBlock(),
              "=5\r\nB=3\r\na=2\r\na-=4\r\nab=7\r\nb=1\r\n\xC3\xA9=6\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, AHeaderSetTwiceKeepsItsFirstValue) {
    request.setHeader("Name", "first");
    request.setHeader("Name", "second");
    request.setHeader("name", "third");
    EXPECT_EQ(request.buildHeaderBlock(), "Name=first\r\nname=third\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, AnEmptyFirstValueIsKeptToo) {
    request.setHeader("Name", "");
    request.setHeader("Name", "second");
    EXPECT_EQ(request.buildHeaderBlock(), "Name=\r\n\r\n");
}

// docs/irregularities.md#null-is-sent-as-empty
TEST_F(OvMEMRequestHeaders, NullIsSentAsEmpty) {
    request.setHeader("Name", "null");
    EXPECT_EQ(request.buildHeaderBlock(), "Name=\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, ATextualNullStillCountsAsTheFirstValue) {
    request.setHeader("Name", "null");
    request.setHeader("Name", "second");
    EXPECT_EQ(request.buildHeaderBlock(), "Name=\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, WhatOnlyResemblesNullIsSentUnchanged) {
    for (const std::string value :
         {"Null", "NULL", "nulL", " null", "null ", "nul", "nulll", "null\t",
          "\"null\"", "null\r\n"}) {
        OvMEMRequest fresh;
        fresh.setHeader("Name", value.c_str());
        EXPECT_EQ(fresh.buildHeaderBlock(), "Name=" + value + "\r\n\r\n");
    }
}

TEST_F(OvMEMRequestHeaders, ANameOfNullIsANameLikeAnother) {
    request.setHeader("null", "value");
    EXPECT_EQ(request.buildHeaderBlock(), "null=value\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, NothingInNameOrValueIsEscaped) {
    request.setHeader("a=b", "c=d\r\ne: <&>\"");
    EXPECT_EQ(request.buildHeaderBlock(), "a=b=c=d\r\ne: <&>\"\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, ANullPointerIsTheEmptyText) {
    request.setHeader("Name", nullptr);
    request.setHeader(nullptr, "value");
    EXPECT_EQ(request.buildHeaderBlock(), "=value\r\nName=\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, TheirTextsAreCopied) {
    std::string name = "Name";
    std::string value = "value";
    request.setHeader(name.c_str(), value.c_str());
    name.assign(4, 'x');
    value.assign(5, 'x');
    EXPECT_EQ(request.buildHeaderBlock(), "Name=value\r\n\r\n");
}

TEST_F(OvMEMRequestHeaders, BuildingTheBlockChangesNothing) {
    request.setHeader("Name", "value");
    const std::string first = request.buildHeaderBlock();
    EXPECT_EQ(request.buildHeaderBlock(), first);
}

TEST_F(OvMEMRequestHeaders, ClearingRemovesAllOfThem) {
    request.setHeader("a", "1");
    request.setHeader("b", "2");
    request.clearHeaders();
    EXPECT_EQ(request.buildHeaderBlock(), "\r\n");
    request.clearHeaders();
    request.setHeader("a", "3");
    EXPECT_EQ(request.buildHeaderBlock(), "a=3\r\n\r\n");
}

// Single-send mode.

using OvMEMRequestSingleSend = OvMEMRequestTest;

TEST_F(OvMEMRequestSingleSend, HeadersAndBodyGoOutInOnePieceWithoutHandshake) {
    transport.reply("the reply");
    request.setHeader("b", "2");
    request.setHeader("a", "1");
    request.setRequestBody("the body");
    EXPECT_EQ(request.sendAndReceive(), "the reply");
    EXPECT_EQ(
        transport.takeCalls(),
        (Calls{R"(OvMem_Send("a=1\r\nb=2\r\n\r\nthe body"))", "OvMem_SendEOF()",
               "OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestSingleSend, TheRequestStreamIsNotRead) {
    transport.reply("");
    std::istringstream stream("untouched");
    request.setRequestStream(&stream);
    request.setRequestBody("body");
    EXPECT_EQ(request.sendAndReceive(), "");
    EXPECT_EQ(stream.tellg(), 0);
    EXPECT_EQ(transport.takeCalls(),
              (Calls{R"(OvMem_Send("\r\nbody"))", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestSingleSend, NothingIsConverted) {
    transport.reply("");
    request.setHeader("Name", "\xE9\xFF");
    request.setRequestBody("\x80\xC3\xA9");
    request.sendAndReceive();
    EXPECT_EQ(
        transport.takeCalls(),
        (Calls{R"(OvMem_Send("Name=\xe9\xff\r\n\r\n\x80\xc3\xa9"))",
               "OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestSingleSend, PositiveStatusesAreNotErrors) {
    transport.send(1001).sendEof(1003).reply("reply");
    request.setRequestBody("body");
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(
        transport.takeCalls(),
        (Calls{R"(OvMem_Send("\r\nbody"))", "OvMem_SendEOF()",
               "OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestSingleSend, TheStatus19AfterItIsAPieceOfTheReply) {
    transport.receive(19, std::string(19, 'x')).receive(-1);
    request.setRequestBody("body");
    EXPECT_EQ(request.sendAndReceive(), std::string(19, 'x'));
    EXPECT_EQ(
        transport.takeCalls(),
        (Calls{R"(OvMem_Send("\r\nbody"))", "OvMem_SendEOF()",
               "OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestSingleSend, ALargeBodyIsStillOnePiece) {
    transport.reply("");
    const std::string body(1000000, 'b');
    request.setRequestBody(body.c_str());
    request.sendAndReceive();
    EXPECT_EQ(transport.takeCalls(),
              (Calls{R"(OvMem_Send("\r\n)" + body + "\")", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestSingleSend, TheLastBodySetCounts) {
    transport.reply("");
    request.setRequestBody("first");
    request.setRequestBody("second");
    request.sendAndReceive();
    EXPECT_EQ(transport.takeCalls(),
              (Calls{R"(OvMem_Send("\r\nsecond"))", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestSingleSend, AnEmptyBodyNeedsAStream) {
    request.setRequestBody("first");
    request.setRequestBody("");
    EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }), noStream);
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMRequestSingleSend, ANullBodyIsTheEmptyText) {
    request.setRequestBody("first");
    request.setRequestBody(nullptr);
    EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }), noStream);
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

// Without body and stream.

TEST_F(OvMEMRequestTest, WithoutBodyAndStreamItThrowsBeforeAnythingIsSent) {
    request.setHeader("Name", "value");
    EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }), noStream);
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMRequestTest, ANullStreamIsNoStream) {
    std::istringstream stream("body");
    request.setRequestStream(&stream);
    request.setRequestStream(nullptr);
    EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }), noStream);
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

// The steps one by one.

using OvMEMRequestSteps = OvMEMRequestTest;

TEST_F(OvMEMRequestSteps, SendHeadersSendsTheBlockAndMarksItsEnd) {
    request.setHeader("Name", "value");
    request.sendHeaders();
    EXPECT_EQ(
        transport.takeCalls(),
        (Calls{R"(OvMem_SendNoAck("Name=value\r\n\r\n"))", "OvMem_SendEOF()"}));
}

TEST_F(OvMEMRequestSteps, SendHeadersIgnoresWhatTheEndMarkAnswers) {
    for (const int status : {-1, -3001, 1, 19}) {
        transport.sendEof(status);
        request.sendHeaders();
        EXPECT_EQ(transport.takeCalls(),
                  (Calls{R"(OvMem_SendNoAck("\r\n"))", "OvMem_SendEOF()"}));
    }
}

TEST_F(OvMEMRequestSteps, SendHeadersTakesZeroForASuccess) {
    transport.sendNoAck(0);
    request.sendHeaders();
    EXPECT_EQ(transport.takeCalls(),
              (Calls{R"(OvMem_SendNoAck("\r\n"))", "OvMem_SendEOF()"}));
}

TEST_F(OvMEMRequestSteps, SendStreamReturnsWhatIsReceivedNext) {
    for (const int status : {20, 19, 0, 18, -1, -3001}) {
        transport.receive(status);
        std::istringstream stream("body");
        request.setRequestStream(&stream);
        EXPECT_EQ(request.sendStream(), status);
        EXPECT_EQ(transport.takeCalls(),
                  (Calls{R"(OvMem_SendNoAck("body"))", "OvMem_SendEOF()",
                         "OvMem_Receive()"}));
    }
}

TEST_F(OvMEMRequestSteps, SendStreamWithoutAStreamThrows) {
    EXPECT_EQ(thrownBy([&] { request.sendStream(); }), noStream);
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMRequestSteps, SendTextReturnsTheStatusOfTheEndMark) {
    for (const int status : {0, 1, 19, -1, -3001}) {
        transport.sendEof(status);
        EXPECT_EQ(request.sendText("some \xE9 text"), status);
        EXPECT_EQ(
            transport.takeCalls(),
            (Calls{R"(OvMem_Send("some \xe9 text"))", "OvMem_SendEOF()"}));
    }
}

TEST_F(OvMEMRequestSteps, SendTextSendsNeitherHeadersNorBody) {
    request.setHeader("Name", "value");
    request.setRequestBody("body");
    EXPECT_EQ(request.sendText(""), 0);
    EXPECT_EQ(transport.takeCalls(),
              (Calls{R"(OvMem_Send(""))", "OvMem_SendEOF()"}));
}

TEST_F(OvMEMRequestSteps, SendTextThrowsWhenSendFails) {
    transport.send(-3016).lastError(0, "broken");
    EXPECT_EQ(thrownBy([&] { request.sendText("text"); }),
              (Thrown{"OvMEMRuntimeException", 0, "broken"}));
    EXPECT_EQ(transport.takeCalls(),
              (Calls{R"(OvMem_Send("text"))", "OvMem_GetLastError()"}));
}

TEST_F(OvMEMRequestSteps, ATextWithoutStorageIsNeverSent) {
    transport.lastError(0, "the last error of before");
    EXPECT_EQ(
        thrownBy([&] { request.sendText(nullptr); }),
        (Thrown{"OvMEMUnrecognisedException", 0, "the last error of before"}));
    EXPECT_EQ(transport.takeCalls(), (Calls{"OvMem_GetLastError()"}));
}

TEST_F(OvMEMRequestSteps, AnExchangeLeavesHeadersAndBodyForTheNext) {
    request.setHeader("Name", "value");
    request.setRequestBody("body");
    for (const std::string reply : {"first", "second"}) {
        transport.reply(reply);
        EXPECT_EQ(request.sendAndReceive(), reply);
        EXPECT_EQ(
            transport.takeCalls(),
            (Calls{R"(OvMem_Send("Name=value\r\n\r\nbody"))", "OvMem_SendEOF()",
                   "OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Client
