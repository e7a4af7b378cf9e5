#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/support/RunInChild.h"
#include "tests/support/ScriptedPlatformTest.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

namespace {

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;
using Texts = std::vector<std::string>;

void onAnotherThread(const std::function<void()>& code) {
    std::thread(code).join();
}

// One registration over a platform of the calling thread; the identifiers of
// the reply, or the text of what was thrown.
Texts registering(OvMEMConnection& connection, const std::string& reply) {
    ScriptedPlatform platform;
    std::string server = "plant";
    std::string client = "pump";
    std::string locale;
    Texts shared;
    platform.transport.receive(19).receive(20).reply(reply);
    const Thrown thrown = thrownBy(
        [&] { connection.registerClient(server, client, locale, shared); });
    platform.transport.takeCalls();
    return thrown == nothingThrown ? shared : Texts{thrown.message};
}

std::string listing(const Texts& identifiers) {
    std::string xml = "<r>";
    for (const std::string& identifier : identifiers) {
        xml += "<sharedClients>" + identifier + "</sharedClients>";
    }
    return xml + "</r>";
}

// What one of several threads does for a while, good replies and bad ones.
void keepRegistering(OvMEMConnection& connection, const std::string& name) {
    for (int round = 0; round < 50; ++round) {
        const Texts expected(20, name + std::to_string(round));
        EXPECT_EQ(registering(connection, listing(expected)), expected);
        EXPECT_EQ(registering(connection, "<!DOCTYPE r><r/>"),
                  Texts{"Fatal Error: parsing: From-String: line 1, char 10\n"
                        "Message: invalid document structure\n"});
        EXPECT_EQ(registering(connection, "<r " + std::string(600000, 'x')),
                  Texts{"XmlPlatformGuard: the XML library may hold no more "
                        "than 3000000 bytes"});
    }
}

}  // namespace

TEST(Threads, AConnectionMayBeUsedOnAnyOneAtATime) {
    for (const bool guarded : {false, true}) {
        runInChild([guarded] {
            std::optional<XmlPlatformGuard> guard;
            if (guarded) {
                guard.emplace();
            }
            std::unique_ptr<OvMEMConnection> connection;
            std::unique_ptr<OvMEMConnection> copy;
            onAnotherThread(
                [&] { connection = std::make_unique<OvMEMConnection>(); });
            for (int time = 0; time < 3; ++time) {
                onAnotherThread([&] {
                    EXPECT_EQ(registering(*connection, listing({"valve"})),
                              Texts{"valve"});
                });
            }
            onAnotherThread(
                [&] { copy = std::make_unique<OvMEMConnection>(*connection); });
            EXPECT_EQ(registering(*copy, listing({"boiler"})), Texts{"boiler"});
            onAnotherThread([&] { connection.reset(); });
            EXPECT_EQ(registering(*copy, listing({"boiler"})),
                      guarded
                          ? Texts{"boiler"}
                          : Texts{"XML parser platform is not initialised"});
            onAnotherThread([&] { copy.reset(); });
        });
    }
}

TEST(Threads, UnderTheGuardConnectionsWorkOnSeveralAtOnce) {
    runInChild([] {
        const XmlPlatformGuard guard(3000000);
        OvMEMConnection pump;
        OvMEMConnection valve;
        std::thread first([&pump] { keepRegistering(pump, "pump-"); });
        std::thread second([&valve] { keepRegistering(valve, "valve-"); });
        first.join();
        second.join();
    });
}

}  // namespace OvMemTest
