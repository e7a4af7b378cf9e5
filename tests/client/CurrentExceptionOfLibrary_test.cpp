#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/CurrentException.h"
#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"

using namespace Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

namespace {

const std::string notRegistered =
    " (-2): Client not Registered with Model Event Manager\n"
    "What to do: call registerClient with a server identity that is not empty "
    "first.";

}  // namespace

TEST(CurrentExceptionOfLibrary, AnObjectThrownInsideIsDescribedOutside) {
    OvMEMConnection connection;
    std::string text = "event";
    std::vector<std::string> shared;
    try {
        connection.putEvents(text, shared, text);
        FAIL() << "nothing was thrown";
    } catch (...) {
        EXPECT_EQ(describeCurrentException(),
                  "OvMEMProtocolException" + notRegistered);
    }
}

TEST(CurrentExceptionOfLibrary, APointerThrownInsideIsItsCatchersToDelete) {
    OvMEMConnection connection;
    std::vector<std::string> shared;
    try {
        try {
            connection.getSharedClients(shared);
            FAIL() << "nothing was thrown";
        } catch (...) {
            EXPECT_EQ(describeCurrentException(),
                      "OvMEMProtocolException*" + notRegistered);
            throw;
        }
    } catch (const OvMEMProtocolException* pointer) {
        EXPECT_EQ(pointer->getType(), -2);
        delete pointer;
    }
}

TEST(CurrentExceptionOfLibrary, TheXmlLayersExceptionIsDescribedOutside) {
    try {
        const XmlPlatformGuard guard("/none");
        FAIL() << "nothing was thrown";
    } catch (...) {
        EXPECT_EQ(describeCurrentException(),
                  "DomException: XmlPlatformGuard: '/none' is not a folder\n"
                  "What to do: name a folder that exists.");
    }
}
