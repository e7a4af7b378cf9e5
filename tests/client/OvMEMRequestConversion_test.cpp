#include <sstream>
#include <string>

#include <unicode/ucnv.h>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "tests/client/WithoutConverters.h"
#include "tests/support/Quoted.h"
#include "tests/support/RunInChild.h"
#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"
#include "tests/util/ScriptedConverters.h"

// The header block of a streamed request as UTF-8. The heap of ICU belongs to
// the process, so the tests without one run in children.

namespace Orvane::Net::OvModelEventManager::Client {

using namespace OvMemTest;

class OvMEMRequestConversion : public ScriptedPlatformTest {
protected:
    // Sends a header of that value, which is text of that code page.
    void expectSent(const char* codePage, const std::string& value,
                    const std::string& utf8) {
        const ScriptedConverters converters(codePage);
        OvMEMRequest request;
        request.setHeader("Name", value.c_str());
        request.sendHeaders();
        EXPECT_EQ(transport.takeCalls(),
                  (Calls{"OvMem_SendNoAck(" +
                             inQuotes("Name=" + utf8 + "\r\n\r\n") + ")",
                         "OvMem_SendEOF()"}));
    }
};

TEST_F(OvMEMRequestConversion, TheBlockIsReadInTheDefaultCodePage) {
    expectSent("ISO-8859-1", "\xE9", "\xC3\xA9");
    expectSent("windows-1252", "\x80", "\xE2\x82\xAC");
    expectSent("Shift_JIS", "\x93\xFA\x96\x7B", "\xE6\x97\xA5\xE6\x9C\xAC");
    expectSent("US-ASCII", "a\xE9z", "a\xEF\xBF\xBDz");
}

TEST_F(OvMEMRequestConversion, Utf8StaysUtf8) {
    expectSent("UTF-8", "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x94\xA7",
               "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x94\xA7");
}

TEST_F(OvMEMRequestConversion, WhatIsNoCharacterIsReplacedWithoutError) {
    expectSent("UTF-8", "a\xFFz", "a\xEF\xBF\xBDz");
    expectSent("UTF-8", "a\xC3", "a\xEF\xBF\xBD");
}

// The empty line follows, so that it is never at the very end.
TEST_F(OvMEMRequestConversion,
       ACharacterCutShortInAValueIsReplacedAtAnyLength) {
    for (const int count : {0, 6000, 10000, 20480, 50000}) {
        std::string value;
        for (int i = 0; i < count; ++i) {
            value += "\xE2\x82\xAC";
        }
        expectSent("UTF-8", value + "\xE2\x82", value + "\xEF\xBF\xBD");
    }
}

TEST_F(OvMEMRequestConversion, ALongBlockLosesNothing) {
    for (const std::string before : {"", "a", "ab", "abc"}) {
        std::string value = before;
        for (int count = 0; count < 20000; ++count) {
            value += "\xF0\x9F\x94\xA7";
        }
        expectSent("UTF-8", value, value);
    }
}

TEST_F(OvMEMRequestConversion, OnlyTheHeadersAreConverted) {
    transport.receive(19).receive(20).reply("\xFF");
    std::istringstream stream("\xFF");
    OvMEMRequest request;
    request.setHeader("Name", "\xFF");
    request.setRequestStream(&stream);
    EXPECT_EQ(request.sendAndReceive(), "\xFF");
    EXPECT_EQ(transport.takeCalls(),
              (Calls{R"(OvMem_SendNoAck("Name=\xef\xbf\xbd\r\n\r\n"))",
                     "OvMem_SendEOF()", "OvMem_Receive()",
                     R"(OvMem_SendNoAck("\xff"))", "OvMem_SendEOF()",
                     "OvMem_Receive()", "OvMem_Receive()", "OvMem_Receive()",
                     "OvMem_Complete()"}));
}

class OvMEMRequestConversionFailure : public ScriptedPlatformTest {
protected:
    const Thrown conversionFailed{
        "OvMEMRuntimeException", 0,
        "Exception occurred while converting to UTF-8 bytes."};
};

TEST_F(OvMEMRequestConversionFailure, SendHeadersReplacesTheException) {
    withoutConverters([this] {
        OvMEMRequest request;
        request.setHeader("Name", "value");
        EXPECT_EQ(thrownBy([&] { request.sendHeaders(); }), conversionFailed);
        EXPECT_EQ(transport.takeCalls(), Calls{});
    });
}

TEST_F(OvMEMRequestConversionFailure, AnExchangeFailsBeforeAnythingIsSent) {
    withoutConverters([this] {
        std::istringstream stream("body");
        OvMEMRequest request;
        request.setRequestStream(&stream);
        EXPECT_EQ(thrownBy([&] { request.sendAndReceive(); }),
                  conversionFailed);
        EXPECT_EQ(stream.tellg(), 0);
        EXPECT_EQ(transport.takeCalls(), Calls{});
    });
}

TEST_F(OvMEMRequestConversionFailure, ASingleSendNeedsNoConverter) {
    withoutConverters([this] {
        transport.reply("reply");
        OvMEMRequest request;
        request.setRequestBody("body");
        EXPECT_EQ(request.sendAndReceive(), "reply");
        EXPECT_EQ(
            transport.takeCalls(),
            (Calls{R"(OvMem_Send("\r\nbody"))", "OvMem_SendEOF()",
                   "OvMem_Receive()", "OvMem_Receive()", "OvMem_Complete()"}));
    });
}

TEST_F(OvMEMRequestConversionFailure, TheRequestWorksAgainAfterwards) {
    withoutConverters([this] {
        OvMEMRequest request;
        EXPECT_EQ(thrownBy([&] { request.sendHeaders(); }), conversionFailed);
        allowConverters();
        request.sendHeaders();
        EXPECT_EQ(transport.takeCalls(),
                  (Calls{R"(OvMem_SendNoAck("\r\n"))", "OvMem_SendEOF()"}));
    });
}

}  // namespace Orvane::Net::OvModelEventManager::Client
