#include "OvMemCppBinding/platform/OvMemBinding.h"

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/emulator/StartedTransport.h"
#include "tests/emulator/Wire.h"

using namespace OvMemTest;

namespace {

using Buffer = std::array<char, 16384>;

class OvMemBinding : public StartedTransport {
protected:
    // A whole reply without an error.
    static Outcome reply(const std::string& text) {
        return {-1, text, "(none)"};
    }

    // The header block is sent, and 19 has been answered.
    void beginPut(const std::string& client) {
        const std::string block = headerBlock("putEvents", "plant", client);
        ASSERT_GT(OvMem_SendNoAck(block.c_str()), 0);
        ASSERT_EQ(OvMem_SendEOF(), 0);
        ASSERT_EQ(OvMem_Receive(buffer.data()), 19);
    }

    void join(const std::vector<std::string>& clients) {
        for (const std::string& client : clients) {
            ASSERT_EQ(request("registerClient", "plant", client).status, -1);
        }
    }

    Buffer buffer{};
};

}  // namespace

TEST_F(OvMemBinding, EveryOperationTakesTheStreamedRoad) {
    EXPECT_EQ(request("registerClient", "plant", "pump", "probe"),
              reply(sharedClients({})));
    EXPECT_EQ(request("registerClient", "plant", "valve", "probe"),
              reply(sharedClients({"pump"})));
    EXPECT_EQ(request("getSharedClients", "plant", "pump", "probe"),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(request("putEvents", "plant", "pump", "valve 7 open"),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(request("getEvents", "plant", "valve", "probe"),
              reply("valve 7 open"));
    EXPECT_EQ(request("getEvents", "plant", "valve", "probe"), reply(""));
    EXPECT_EQ(request("unregisterClient", "plant", "pump", "probe"),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(request("getStatus", "", "", "OvMEM Status check"),
              reply("OvMEM Status check"));
}

TEST_F(OvMemBinding, EveryOperationCanBeSentInOnePiece) {
    const auto whole = [](const std::string& operation,
                          const std::string& client, const std::string& body) {
        const Outcome outcome =
            wholeExchange(headerBlock(operation, "plant", client) + body);
        EXPECT_EQ(OvMem_Complete(), 0);
        return outcome;
    };
    EXPECT_EQ(whole("registerClient", "pump", "probe"),
              reply(sharedClients({})));
    EXPECT_EQ(whole("registerClient", "valve", ""),
              reply(sharedClients({"pump"})));
    EXPECT_EQ(whole("getSharedClients", "valve", ""),
              reply(sharedClients({"pump"})));
    EXPECT_EQ(whole("putEvents", "pump", "open\r\n\r\nshut"),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(whole("getEvents", "valve", "probe"), reply("open\r\n\r\nshut"));
    EXPECT_EQ(whole("unregisterClient", "valve", ""),
              reply(sharedClients({"pump"})));
    EXPECT_EQ(whole("getStatus", "", "echo"), reply("echo"));
}

TEST_F(OvMemBinding, TheCallsOfAStreamedPutAnswerAsDocumented) {
    join({"pump", "valve"});
    const std::string block = headerBlock("putEvents", "plant", "pump");
    EXPECT_GT(OvMem_SendNoAck(block.c_str()), 0);
    EXPECT_EQ(OvMem_SendEOF(), 0);
    EXPECT_EQ(OvMem_Receive(buffer.data()), 19);
    EXPECT_GT(OvMem_SendNoAck("valve 7 "), 0);
    EXPECT_GT(OvMem_SendNoAck("open"), 0);
    EXPECT_EQ(OvMem_SendEOF(), 0);
    EXPECT_EQ(OvMem_Receive(buffer.data()), 20);
    const std::string expected = sharedClients({"valve"});
    EXPECT_EQ(OvMem_Receive(buffer.data()),
              static_cast<int32_t>(expected.size()));
    EXPECT_EQ(std::string(buffer.data(), expected.size()), expected);
    EXPECT_EQ(OvMem_Receive(buffer.data()), -1);
    EXPECT_EQ(OvMem_Complete(), 0);
    EXPECT_EQ(request("getEvents", "plant", "valve").reply, "valve 7 open");
}

TEST_F(OvMemBinding, AHeaderBlockMayComeInParts) {
    const std::string block = headerBlock("getStatus", "", "");
    EXPECT_GT(OvMem_SendNoAck(block.substr(0, 20).c_str()), 0);
    EXPECT_GT(OvMem_SendNoAck(""), 0);
    EXPECT_EQ(streamedExchange(block.substr(20), {"echo"}), reply("echo"));
}

TEST_F(OvMemBinding, AnEmptyBodyIsEndedWithoutAPart) {
    join({"pump", "valve"});
    EXPECT_EQ(streamedExchange(headerBlock("putEvents", "plant", "pump"), {}),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(streamedExchange(headerBlock("putEvents", "plant", "pump"), {""}),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(request("getEvents", "plant", "valve"), reply(""));
}

TEST_F(OvMemBinding, ABodyMayLookLikeARequest) {
    join({"pump", "valve"});
    const std::string events =
        headerBlock("unregisterClient", "plant", "valve");
    EXPECT_EQ(request("putEvents", "plant", "pump", events),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(request("getEvents", "plant", "valve"), reply(events));
}

TEST_F(OvMemBinding, ALongReplyComesInPiecesOf16384Bytes) {
    std::string text;
    for (int i = 0; text.size() < 2 * 16384 + 1; ++i) {
        text += std::to_string(i);
    }
    text.resize(2 * 16384 + 1);
    OvMem_Send((headerBlock("getStatus", "", "") + text).c_str());
    OvMem_SendEOF();
    EXPECT_EQ(OvMem_Receive(buffer.data()), 16384);
    EXPECT_EQ(std::string(buffer.data(), 16384), text.substr(0, 16384));
    EXPECT_EQ(OvMem_Receive(buffer.data()), 16384);
    EXPECT_EQ(std::string(buffer.data(), 16384), text.substr(16384, 16384));
    EXPECT_EQ(OvMem_Receive(buffer.data()), 1);
    EXPECT_EQ(buffer[0], text.back());
    EXPECT_EQ(OvMem_Receive(buffer.data()), -1);
    EXPECT_EQ(OvMem_Complete(), 0);
}

TEST_F(OvMemBinding, AReplyOf16384BytesIsOnePiece) {
    OvMem_Send(
        (headerBlock("getStatus", "", "") + std::string(16384, 'x')).c_str());
    OvMem_SendEOF();
    EXPECT_EQ(OvMem_Receive(buffer.data()), 16384);
    EXPECT_EQ(OvMem_Receive(buffer.data()), -1);
}

TEST_F(OvMemBinding, EventsAreConsumedOnlyByComplete) {
    join({"pump", "valve"});
    request("putEvents", "plant", "pump", "one");
    const std::string get = headerBlock("getEvents", "plant", "valve");
    EXPECT_EQ(streamedExchange(get, {}), reply("one"));
    request("putEvents", "plant", "pump", "two");
    EXPECT_EQ(wholeExchange(get), reply("onetwo"));
    EXPECT_EQ(OvMem_Complete(), 0);
    EXPECT_EQ(streamedExchange(get, {}), reply(""));
}

TEST_F(OvMemBinding, APutIsDoneOnceItIsWholeAlsoWithoutComplete) {
    join({"pump", "valve"});
    beginPut("pump");
    OvMem_SendNoAck("open");
    OvMem_SendEOF();
    EXPECT_EQ(OvMem_Receive(buffer.data()), 20);
    EXPECT_EQ(request("getEvents", "plant", "valve"), reply("open"));
}

TEST_F(OvMemBinding, APutThatIsNotWholeIsNotDone) {
    join({"pump", "valve"});
    beginPut("pump");
    OvMem_SendNoAck("half");
    OvMem_SendEOF();
    EXPECT_EQ(request("getEvents", "plant", "valve"), reply(""));
}

TEST_F(OvMemBinding, ANewRequestTakesThePlaceOfAnUnfinishedOne) {
    const Outcome status = reply("echo");
    const std::string block = headerBlock("getStatus", "", "");
    const std::string other = headerBlock("getStatus", "", "") + "other";

    OvMem_SendNoAck(block.c_str());  // only the header block was sent
    OvMem_SendEOF();
    EXPECT_EQ(streamedExchange(block, {"echo"}), status);

    OvMem_SendNoAck(block.c_str());  // the body was sent
    OvMem_SendEOF();
    OvMem_Receive(buffer.data());
    OvMem_SendNoAck("body");
    OvMem_SendEOF();
    EXPECT_EQ(streamedExchange(block, {"echo"}), status);

    OvMem_Send(other.c_str());  // the whole request was sent
    EXPECT_EQ(streamedExchange(block, {"echo"}), status);

    OvMem_Send(other.c_str());  // and ended
    OvMem_SendEOF();
    EXPECT_EQ(streamedExchange(block, {"echo"}), status);

    OvMem_Send(other.c_str());  // a part of the reply was read
    OvMem_SendEOF();
    OvMem_Receive(buffer.data());
    EXPECT_EQ(streamedExchange(block, {"echo"}), status);

    EXPECT_EQ(wholeExchange(other), reply("other"));  // and all of it
    EXPECT_EQ(streamedExchange(block, {"echo"}), status);
}

TEST_F(OvMemBinding, AWholeRequestAlsoTakesThePlaceOfAHalfSentBody) {
    join({"pump", "valve"});
    beginPut("pump");
    OvMem_SendNoAck("half");
    EXPECT_EQ(wholeExchange(headerBlock("getEvents", "plant", "valve")),
              reply(""));
}

TEST_F(OvMemBinding, AStreamedRequestAlsoTakesThePlaceOfAHalfSentBody) {
    join({"pump", "valve"});
    for (const int parts : {0, 1, 2}) {
        beginPut("pump");
        for (int part = 0; part < parts; ++part) {
            OvMem_SendNoAck(std::string(4098, 'x').c_str());
        }
        EXPECT_EQ(request("putEvents", "plant", "pump", "[tick]"),
                  reply(sharedClients({"valve"})));
        EXPECT_EQ(request("getEvents", "plant", "valve"), reply("[tick]"));
    }
}

TEST_F(OvMemBinding, ABodyMayBeGivenUpMoreThanOnce) {
    join({"pump", "valve"});
    beginPut("pump");
    OvMem_SendNoAck("first ");
    OvMem_SendNoAck(headerBlock("putEvents", "plant", "pump").c_str());
    OvMem_SendEOF();
    EXPECT_EQ(OvMem_Receive(buffer.data()), 19);
    OvMem_SendNoAck("second ");
    EXPECT_EQ(request("putEvents", "plant", "pump", "third"),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(request("getEvents", "plant", "valve"), reply("third"));
}

TEST_F(OvMemBinding, ABodyMayEndLikeARequestAndIsStillWhole) {
    join({"pump", "valve"});
    const std::string block = headerBlock("unregisterClient", "plant", "valve");
    EXPECT_EQ(streamedExchange(headerBlock("putEvents", "plant", "pump"),
                               {std::string(4098, 'x'), block}),
              reply(sharedClients({"valve"})));
    EXPECT_EQ(request("getEvents", "plant", "valve"),
              reply(std::string(4098, 'x') + block));
}

TEST_F(OvMemBinding, ABodyThatWasGivenUpIsForgottenByAPutOfNothing) {
    join({"pump", "valve"});
    for (const std::vector<std::string>& parts :
         {std::vector<std::string>{}, {"half"}, {"half", " of it"}}) {
        beginPut("pump");
        for (const std::string& part : parts) {
            OvMem_SendNoAck(part.c_str());
        }
        EXPECT_EQ(request("putEvents", "plant", "pump"),
                  reply(sharedClients({"valve"})));
        EXPECT_EQ(request("getEvents", "plant", "valve"), reply(""));
    }
}

TEST_F(OvMemBinding, ABodyMayEndLikeAPutOfAnotherClient) {
    join({"pump", "valve"});
    for (const std::string& block :
         {headerBlock("putEvents", "plant", "valve"),
          headerBlock("putEvents", "mill", "pump"),
          headerBlock("getEvents", "plant", "pump")}) {
        EXPECT_EQ(streamedExchange(headerBlock("putEvents", "plant", "pump"),
                                   {"x", block}),
                  reply(sharedClients({"valve"})));
        OvMem_Complete();
        EXPECT_EQ(request("getEvents", "plant", "valve"), reply("x" + block));
    }
}

TEST_F(OvMemBinding, ABodyThatEndsLikeNoRequestIsNotAskedForAgain) {
    join({"pump", "valve"});
    beginPut("pump");
    OvMem_SendNoAck("A=1\r\n\r\n");
    OvMem_SendEOF();
    EXPECT_EQ(OvMem_Receive(buffer.data()), 20);
    beginPut("pump");
    OvMem_SendNoAck((headerBlock("getStatus", "", "") + "more").c_str());
    OvMem_SendEOF();
    EXPECT_EQ(OvMem_Receive(buffer.data()), 20);
    EXPECT_EQ(request("getEvents", "plant", "valve"),
              reply("A=1\r\n\r\n" + headerBlock("getStatus", "", "") + "more"));
}
