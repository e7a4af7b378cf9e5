#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/support/RunInChild.h"
#include "tests/support/Thrown.h"
#include "tests/util/GuardedParsing.h"
#include "tests/util/RecordingReader.h"
#include "tests/util/XmlPlatform.h"

namespace {

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;
using OvMemTest::nothingThrown;
using OvMemTest::parsing;
using OvMemTest::runInChild;
using OvMemTest::takeReaderCalls;
using Calls = std::vector<std::string>;

}  // namespace

TEST(SAXToNodeParserReader, WithoutAGuardHasTheTwoHandlersAndNothingElse) {
    runInChild([] {
        const OvMemTest::XmlPlatform platform;
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
        EXPECT_EQ(takeReaderCalls(),
                  (Calls{"create: the memory of the platform",
                         "setContentHandler: the parser",
                         "setErrorHandler: the parser", "parse"}));
    });
}

TEST(SAXToNodeParserReader, UnderAGuardIsWatchedAndHasMemoryOfItsOwn) {
    runInChild([] {
        const XmlPlatformGuard guard;
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
        EXPECT_EQ(
            takeReaderCalls(),
            (Calls{"create: memory of its own", "setContentHandler: the parser",
                   "setErrorHandler: the parser",
                   "installAdvDocHandler: the watch",
                   "setLexicalHandler: the refusal", "parse"}));
    });
}

TEST(SAXToNodeParserReader, AfterTheGuardStillHasMemoryOfItsOwn) {
    runInChild([] {
        std::optional<XmlPlatformGuard> guard(std::in_place);
        const OvMEMConnection connection;
        guard.reset();
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
        EXPECT_EQ(
            takeReaderCalls(),
            (Calls{"create: memory of its own", "setContentHandler: the parser",
                   "setErrorHandler: the parser", "parse"}));
    });
}
