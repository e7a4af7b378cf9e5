#include "OvMemCppBinding/util/PlatformStart.h"

#include <gtest/gtest.h>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "OvMemCppBinding/client/CurrentException.h"
#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/support/RunInChild.h"
#include "tests/support/SystemCheck.h"
#include "tests/support/Thrown.h"

namespace {

using namespace Orvane::Net::OvModelEventManager;
using OvMemTest::nothingThrown;
using OvMemTest::runInChild;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;
using OvMemTest::xmlPlatformRuns;
using Util::startPlatform;
using xercesc::XMLPlatformUtils;

const Thrown nothingParsed{"DomException", 0,
                           "XML parser platform is not initialised"};

Thrown parsing() {
    return thrownBy([] { Util::SAXToNodeParser().parseString("<r/>"); });
}

class NoMemory : public xercesc::MemoryManager {
public:
    void* allocate(XMLSize_t) override {
        throw xercesc::OutOfMemoryException();
    }
    void deallocate(void*) override {}
    xercesc::MemoryManager* getExceptionMemoryManager() override {
        return this;
    }
};

void failToStart() {
    static NoMemory none;
    EXPECT_EQ(thrownBy([] { startPlatform(nullptr, &none); }),
              (Thrown{"OutOfMemoryException", 0, ""}));
}

}  // namespace

TEST(PlatformStart, IsCounted) {
    runInChild([] {
        startPlatform();
        startPlatform();
        XMLPlatformUtils::Terminate();
        EXPECT_EQ(parsing(), nothingThrown);
        XMLPlatformUtils::Terminate();
        EXPECT_FALSE(xmlPlatformRuns());
        EXPECT_EQ(parsing(), nothingParsed);
    });
}

TEST(PlatformStart, AfterOneThatFailedNothingIsParsed) {
    runInChild([] {
        failToStart();
        EXPECT_EQ(parsing(), nothingParsed);
        {
            const Client::OvMEMConnection connection;
            EXPECT_EQ(parsing(), nothingParsed);
        }
        const Client::OvMEMConnection another;
        EXPECT_EQ(parsing(), nothingParsed);
    });
}

TEST(PlatformStart, AfterOneThatFailedAGuardIsRefused) {
    runInChild([] {
        failToStart();
        for (int time = 0; time < 2; ++time) {
            try {
                const Util::XmlPlatformGuard guard;
                FAIL() << "nothing was thrown";
            } catch (...) {
                EXPECT_EQ(Client::describeCurrentException(),
                          "DomException: XmlPlatformGuard: the XML parser "
                          "platform failed to start earlier\n"
                          "What to do: give the process more memory.");
            }
        }
    });
}
