#include <istream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "OvMemCppBinding/client/Utf8ConversionException.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Quoted.h"
#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"

// The handshake and the streaming of a body.

namespace Orvane::Net::OvModelEventManager::Client {

using namespace OvMemTest;
using namespace std::chrono_literals;

class OvMEMRequestStream : public ScriptedPlatformTest {
protected:
    // Gives the request a body to stream.
    void give(const std::string& body) {
        stream = std::make_unique<std::istringstream>(body);
        request.setRequestStream(stream.get());
    }

    // The calls that every exchange of a request without headers begins with.
    Calls after(const Calls& rest) const {
        Calls calls{R"(OvMem_SendNoAck("\r\n"))", "OvMem_SendEOF()",
                    "OvMem_Receive()"};
        calls.insert(calls.end(), rest.begin(), rest.end());
        return calls;
    }

    static std::string chunk(const std::string& bytes) {
        return "OvMem_SendNoAck(" + inQuotes(bytes) + ")";
    }

    // Streams `body` and checks that it goes out as `chunks`.
    void expectChunks(const std::string& body,
                      const std::vector<std::string>& chunks) {
        transport.receive(19).receive(20).reply("reply");
        give(body);
        EXPECT_EQ(request.sendAndReceive(), "reply");
        Calls rest;
        for (const std::string& bytes : chunks) {
            rest.push_back(chunk(bytes));
        }
        rest.insert(rest.end(),
                    {"OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Receive()", "OvMem_Complete()"});
        EXPECT_EQ(transport.takeCalls(), after(rest));
    }

    static std::string pattern(std::size_t length) {
        std::string bytes(length, '\0');
        for (std::size_t at = 0; at < length; ++at) {
            bytes[at] = static_cast<char>('!' + at % 89);
        }
        return bytes;
    }

    std::unique_ptr<std::istream> stream;
    OvMEMRequest request;
};

// Chunks.

TEST_F(OvMEMRequestStream, AShortBodyIsOneChunk) {
    expectChunks("the body", {"the body"});
    expectChunks("x", {"x"});
}

TEST_F(OvMEMRequestStream, ABodyIsCutIntoChunksOf4098Bytes) {
    for (const std::size_t length :
         {4097u, 4098u, 4099u, 8195u, 8196u, 8197u, 12294u, 100000u}) {
        const std::string body = pattern(length);
        std::vector<std::string> chunks;
        for (std::size_t at = 0; at < length; at += 4098) {
            chunks.push_back(body.substr(at, 4098));
        }
        SCOPED_TRACE(length);
        expectChunks(body, chunks);
    }
}

TEST_F(OvMEMRequestStream, AnEmptyBodyIsNoChunk) {
    expectChunks("", {});
}

TEST_F(OvMEMRequestStream, TheBodyIsNotConverted) {
    expectChunks("\xE9\x80\xFF", {"\xE9\x80\xFF"});
}

// docs/irregularities.md#nul-cuts-the-text
TEST_F(OvMEMRequestStream, NulCutsTheTextOfItsChunk) {
    expectChunks(std::string("before\0behind", 13), {"before"});
    expectChunks(std::string("\0behind", 7), {""});
    std::string body = pattern(4098 + 100);
    body[10] = '\0';
    expectChunks(body, {body.substr(0, 10), body.substr(4098)});
}

TEST_F(OvMEMRequestStream, ReadingBeginsWhereTheStreamStands) {
    transport.receive(19).receive(20).reply("");
    give("0123456789");
    stream->seekg(4);
    request.sendAndReceive();
    EXPECT_EQ(
        transport.takeCalls(),
        after({R"(OvMem_SendNoAck("456789"))", "OvMem_SendEOF()",
               "OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, AStreamAlreadyAtItsEndGivesNoChunk) {
    transport.receive(19).receive(20).reply("");
    give("body");
    stream->ignore(100);
    ASSERT_TRUE(stream->eof());
    request.sendAndReceive();
    EXPECT_EQ(transport.takeCalls(),
              after({"OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Complete()"}));
}

// The status of a chunk.

TEST_F(OvMEMRequestStream, AChunkAnsweredWithZeroEndsThePassWithoutError) {
    transport.sendNoAck(1).sendNoAck(0).receive(19).receive(20).reply("reply");
    const std::string body = pattern(5000);
    give(body);
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(transport.takeCalls(),
              after({chunk(body.substr(0, 4098)), "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, ANextPassGoesOnWhereTheStreamStands) {
    transport.sendNoAck(1).sendNoAck(0);
    transport.receive(19).receive(19).receive(20).reply("reply");
    const std::string body = pattern(5000);
    give(body);
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(transport.takeCalls(),
              after({chunk(body.substr(0, 4098)), "OvMem_SendEOF()",
                     "OvMem_Receive()", chunk(body.substr(4098)),
                     "OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, AnyPositiveStatusOfAChunkMeansGoOn) {
    const std::string body = pattern(4098 * 3 + 1);
    transport.sendNoAck(1).sendNoAck(2).sendNoAck(1001).sendNoAck(20);
    transport.sendNoAck(1003).receive(19).receive(20).reply("");
    give(body);
    EXPECT_EQ(request.sendAndReceive(), "");
    EXPECT_EQ(
        transport.takeCalls(),
        after({chunk(body.substr(0, 4098)), chunk(body.substr(4098, 4098)),
               chunk(body.substr(8196, 4098)), chunk(body.substr(12294)),
               "OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Receive()",
               "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, AChunkRefusedIsThrownBeforeTheEndMark) {
    transport.sendNoAck(1).sendNoAck(-3001).receive(19).lastError(0, "gone");
    const std::string body = pattern(5000);
    give(body);
    EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }),
              (Thrown{"OvMEMConnectionException", 0, "gone"}));
    EXPECT_EQ(transport.takeCalls(),
              after({chunk(body.substr(0, 4098)), "OvMem_GetLastError()"}));
}

// The handshake.

TEST_F(OvMEMRequestStream, Status20AtOnceSkipsTheBody) {
    transport.receive(20).reply("reply");
    give("not wanted");
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(stream->tellg(), 0);
    EXPECT_EQ(
        transport.takeCalls(),
        after({"OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, StatusZeroAtOnceSkipsTheBodyToo) {
    transport.receive(0).reply("reply");
    give("not wanted");
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(
        transport.takeCalls(),
        after({"OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, StatusZeroAfterTheBodyEndsTheHandshake) {
    transport.receive(19).receive(0).reply("reply");
    give("body");
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(transport.takeCalls(),
              after({R"(OvMem_SendNoAck("body"))", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, ASecond19FindsTheStreamAtItsEnd) {
    transport.receive(19).receive(19).receive(19).receive(20).reply("reply");
    give("body");
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(transport.takeCalls(),
              after({R"(OvMem_SendNoAck("body"))", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_SendEOF()", "OvMem_Receive()",
                     "OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, BytesReceivedInTheHandshakeAreNotReply) {
    transport.receive(19, std::string(19, 'h')).receive(20, "more handshake");
    transport.reply("reply");
    give("body");
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(transport.takeCalls(),
              after({R"(OvMem_SendNoAck("body"))", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, ANegativeEndMarkBehindTheHeadersIsIgnored) {
    transport.sendEof(-3001).receive(20).reply("reply");
    give("");
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(
        transport.takeCalls(),
        after({"OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, APositiveEndMarkBehindTheBodyIsNoError) {
    transport.sendEof(0).sendEof(1001).receive(19).receive(20).reply("reply");
    give("body");
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(transport.takeCalls(),
              after({R"(OvMem_SendNoAck("body"))", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, TheEndOfReplyIsAnErrorInTheHandshake) {
    transport.receive(-1).lastError(0, "too early");
    give("body");
    EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }),
              (Thrown{"OvMEMUnrecognisedException", 0, "too early"}));
    EXPECT_EQ(transport.takeCalls(), after({"OvMem_GetLastError()"}));
}

// Each status stops the process that meets it, so it meets it in a child.
// docs/irregularities.md#endless-handshake
class OvMEMRequestEndlessHandshake
    : public ::testing::TestWithParam<std::pair<int, int>> {};

TEST_P(OvMEMRequestEndlessHandshake, NeverEndsAndCallsNobody) {
    const auto [first, second] = GetParam();
    ChildProcess child([first = first, second = second] {
        ScriptedPlatform platform;
        platform.transport.receive(first).receive(second);
        platform.transport.traceTo(1);
        std::istringstream stream("body");
        OvMEMRequest request;
        request.setRequestStream(&stream);
        request.sendAndReceive();
        return 0;
    });
    std::string calls =
        "OvMem_SendNoAck(\"\\r\\n\")\nOvMem_SendEOF()\nOvMem_Receive()\n";
    if (first == 19) {
        calls += "OvMem_SendNoAck(\"body\")\nOvMem_SendEOF()\n";
        calls += "OvMem_Receive()\n";
    }
    EXPECT_TRUE(child.awaitOutput(calls, 10s));
    EXPECT_FALSE(child.awaitEnd(200ms));
    child.kill();
    EXPECT_EQ(child.signal(), SIGKILL);
    EXPECT_EQ(child.output(), calls);
    EXPECT_EQ(child.errors(), "");
}

INSTANTIATE_TEST_SUITE_P(
    OnAnyUnknownPositiveStatus, OvMEMRequestEndlessHandshake,
    ::testing::Values(std::pair(1, 20), std::pair(18, 20), std::pair(21, 20),
                      std::pair(1001, 20), std::pair(2147483647, 20),
                      std::pair(19, 18), std::pair(19, 21)));

// Streams that fail.

namespace {

// Delivers some bytes, then throws.
template <typename Thrower>
class BrokenBuffer : public std::streambuf {
public:
    BrokenBuffer(std::string bytesBefore, Thrower throwerAfter)
        : bytes(std::move(bytesBefore)), thrower(throwerAfter) {}

protected:
    std::streamsize xsgetn(char* target, std::streamsize length) override {
        const auto size = static_cast<std::streamsize>(bytes.size());
        if (size < length) {
            thrower();
        }
        bytes.copy(target, static_cast<std::size_t>(length));
        bytes.erase(0, static_cast<std::size_t>(length));
        return length;
    }

private:
    std::string bytes;
    Thrower thrower;
};

}  // namespace

TEST_F(OvMEMRequestStream, WhatTheStreamThrowsPassesUnchanged) {
    BrokenBuffer buffer(pattern(4098), [] { throw std::logic_error("disk"); });
    std::istream broken(&buffer);
    broken.exceptions(std::ios::badbit);
    transport.receive(19);
    request.setRequestStream(&broken);
    EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }),
              (Thrown{"logic_error", 0, "disk"}));
    EXPECT_EQ(transport.takeCalls(), after({chunk(pattern(4098))}));
}

TEST_F(OvMEMRequestStream, AConversionFailureOfTheStreamIsReplacedAsWell) {
    BrokenBuffer buffer("", [] { throw Utf8ConversionException("stream"); });
    std::istream broken(&buffer);
    broken.exceptions(std::ios::badbit);
    transport.receive(19);
    request.setRequestStream(&broken);
    EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }),
              (Thrown{"OvMEMRuntimeException", 0,
                      "Exception occurred while converting to UTF-8 bytes."}));
    EXPECT_EQ(transport.takeCalls(), after({}));
}

TEST_F(OvMEMRequestStream, SendStreamAloneDoesNotReplaceAConversionFailure) {
    BrokenBuffer buffer("", [] { throw Utf8ConversionException("stream"); });
    std::istream broken(&buffer);
    broken.exceptions(std::ios::badbit);
    request.setRequestStream(&broken);
    EXPECT_EQ(thrownBy([&] { request.sendStream(); }),
              (Thrown{"Utf8ConversionException", 0, "stream"}));
    EXPECT_EQ(transport.takeCalls(), Calls{});
}

TEST_F(OvMEMRequestStream, AStreamThatFailsSilentlyEndsThePass) {
    BrokenBuffer buffer(pattern(4098), [] { throw std::logic_error("disk"); });
    std::istream broken(&buffer);
    transport.receive(19).receive(20).reply("reply");
    request.setRequestStream(&broken);
    EXPECT_EQ(request.sendAndReceive(), "reply");
    EXPECT_EQ(
        transport.takeCalls(),
        after({chunk(pattern(4098)), "OvMem_SendEOF()", "OvMem_Receive()",
               "OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
}

TEST_F(OvMEMRequestStream, AStreamWithoutBufferGivesNoChunk) {
    std::istream nowhere(nullptr);
    transport.receive(19).receive(20).reply("");
    request.setRequestStream(&nowhere);
    EXPECT_EQ(request.sendAndReceive(), "");
    EXPECT_EQ(transport.takeCalls(),
              after({"OvMem_SendEOF()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Complete()"}));
}

}  // namespace Orvane::Net::OvModelEventManager::Client
