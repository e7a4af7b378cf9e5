#include <sstream>
#include <string>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"

// How a reply is put together.

namespace Orvane::Net::OvModelEventManager::Client {

using namespace OvMemTest;

class OvMEMRequestReply : public ScriptedPlatformTest {
protected:
    // Exchanges a request for the reply that is scripted behind the 20.
    std::string exchange() {
        std::istringstream stream("body");
        OvMEMRequest request;
        request.setRequestStream(&stream);
        return request.sendAndReceive();
    }

    // The calls of an exchange that asks for a reply `times` times.
    Calls receiving(std::size_t times, const std::string& last) const {
        Calls calls{R"(OvMem_SendNoAck("\r\n"))", "OvMem_SendEOF()",
                    "OvMem_Receive()"};
        calls.insert(calls.end(), times, "OvMem_Receive()");
        calls.push_back(last);
        return calls;
    }

    static std::string pattern(std::size_t length) {
        std::string bytes(length, '\0');
        for (std::size_t at = 0; at < length; ++at) {
            bytes[at] = static_cast<char>((at * 131) % 251);
        }
        return bytes;
    }
};

TEST_F(OvMEMRequestReply, NothingIsTheEmptyText) {
    transport.receive(20).receive(-1);
    EXPECT_EQ(exchange(), "");
    EXPECT_EQ(transport.takeCalls(), receiving(1, "OvMem_Complete()"));
}

TEST_F(OvMEMRequestReply, ChunksAreJoinedInTheirOrder) {
    transport.receive(20).chunk("one ").chunk("two ").chunk("three");
    transport.receive(-1);
    EXPECT_EQ(exchange(), "one two three");
    EXPECT_EQ(transport.takeCalls(), receiving(4, "OvMem_Complete()"));
}

TEST_F(OvMEMRequestReply, AnEmptyChunkDoesNotEndIt) {
    transport.receive(20).receive(0).chunk("a").receive(0).receive(0);
    transport.chunk("b").receive(-1);
    EXPECT_EQ(exchange(), "ab");
    EXPECT_EQ(transport.takeCalls(), receiving(6, "OvMem_Complete()"));
}

TEST_F(OvMEMRequestReply, TheLengthsOf19And20MeanNothingHere) {
    transport.receive(20).receive(19, std::string(19, 'x'));
    transport.receive(20, std::string(20, 'y')).receive(-1);
    EXPECT_EQ(exchange(), std::string(19, 'x') + std::string(20, 'y'));
    EXPECT_EQ(transport.takeCalls(), receiving(3, "OvMem_Complete()"));
}

TEST_F(OvMEMRequestReply, ItsBytesAreNeitherConvertedNorCut) {
    const std::string bytes("\0a\0\0b\xE9\xFF\r\n\x1A\0", 11);
    transport.receive(20).chunk(bytes).chunk(std::string(1, '\0'));
    transport.receive(-1);
    EXPECT_EQ(exchange(), bytes + std::string(1, '\0'));
    EXPECT_EQ(transport.takeCalls(), receiving(3, "OvMem_Complete()"));
}

TEST_F(OvMEMRequestReply, EveryLengthAroundTheBufferSizesArrivesWhole) {
    for (const std::size_t length : {1u, 16383u, 16384u, 16385u, 32767u, 32768u,
                                     32769u, 65536u, 65537u, 1000000u}) {
        const std::string bytes = pattern(length);
        transport.receive(20).reply(bytes);
        ASSERT_EQ(exchange(), bytes) << length;
        EXPECT_EQ(transport.takeCalls(),
                  receiving((length + 16383) / 16384 + 1, "OvMem_Complete()"));
    }
}

TEST_F(OvMEMRequestReply, OneByteBehindAFullBufferArrives) {
    transport.receive(20).chunk(pattern(16384)).chunk("!").receive(-1);
    EXPECT_EQ(exchange(), pattern(16384) + "!");
    EXPECT_EQ(transport.takeCalls(), receiving(3, "OvMem_Complete()"));
}

TEST_F(OvMEMRequestReply, ManySmallChunksArriveWhole) {
    const std::string bytes = pattern(40000);
    transport.receive(20);
    for (std::size_t at = 0; at < bytes.size(); at += 7) {
        transport.chunk(bytes.substr(at, 7));
    }
    transport.receive(-1);
    EXPECT_EQ(exchange(), bytes);
    EXPECT_EQ(transport.takeCalls(), receiving(5716, "OvMem_Complete()"));
}

TEST_F(OvMEMRequestReply, TheResultOfCompleteIsIgnored) {
    for (const int status : {-1, -3001, 1, 1001}) {
        transport.receive(20).reply("reply").complete(status);
        EXPECT_EQ(exchange(), "reply");
        EXPECT_EQ(transport.takeCalls(), receiving(2, "OvMem_Complete()"));
    }
}

TEST_F(OvMEMRequestReply, AnErrorDiscardsItAndCompletesNothing) {
    transport.receive(20).chunk("partial").receive(-3009).lastError(0, "cut");
    EXPECT_EQ(thrownBy([this] { exchange(); }),
              (Thrown{"OvMEMRuntimeException", 0, "cut"}));
    EXPECT_EQ(transport.takeCalls(), receiving(2, "OvMem_GetLastError()"));
}

TEST_F(OvMEMRequestReply, AChunkLongerThanTheBufferIsABrokenTransport) {
    for (const int length : {16385, 16386, 32768, 2147483647}) {
        transport.receive(20).chunk("partial").receive(length);
        EXPECT_EQ(thrownBy([this] { exchange(); }),
                  (Thrown{"OvMEMProtocolException", 0,
                          "Reply chunk exceeds the receive buffer."}));
        EXPECT_EQ(transport.takeCalls(), receiving(1, "OvMem_Receive()"));
    }
}

TEST_F(OvMEMRequestReply, AStatusOfTheStartIsALengthHere) {
    for (const int status : {1001, 1002, 1003}) {
        const std::string bytes = pattern(static_cast<std::size_t>(status));
        transport.receive(20).chunk(bytes).receive(-1);
        EXPECT_EQ(exchange(), bytes);
        EXPECT_EQ(transport.takeCalls(), receiving(2, "OvMem_Complete()"));
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Client
