#include "emulator/manager/EventManager.h"

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "emulator/manager/Refusal.h"
#include "emulator/manager/SharedClientsReplies.h"
#include "emulator/manager/ShownText.h"
#include "emulator/store/MemoryStore.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class EventManagerTest : public testing::Test {
protected:
    Reply answer(Operation operation, const std::string& client,
                 const std::string& body = "") {
        return manager.answer({operation, {"plant", client}, "test"}, body);
    }

    // The identities in a reply, each between its tags.
    std::vector<std::string> ids(Operation operation, const std::string& client,
                                 const std::string& body = "") {
        const std::string document = *answer(operation, client, body).text;
        const std::string open = "<ns0:sharedClients>";
        std::vector<std::string> found;
        for (auto at = document.find(open); at != std::string::npos;
             at = document.find(open, at)) {
            at += open.size();
            found.push_back(document.substr(at, document.find('<', at) - at));
        }
        return found;
    }

    std::string notRegistered(const std::function<void()>& work) {
        try {
            work();
        } catch (const Refusal& refusal) {
            EXPECT_EQ(refusal.status, -3017);
            return refusal.what();
        }
        return "no refusal";
    }

    MemoryStore store;
    SharedClientsReplies replies;
    EventManager manager{store, replies};
};

}  // namespace

TEST_F(EventManagerTest, RegistrationIsAnsweredWithTheOthersAscending) {
    EXPECT_THAT(ids(Operation::registerClient, "valve"), IsEmpty());
    EXPECT_THAT(ids(Operation::registerClient, "motor"), ElementsAre("valve"));
    EXPECT_THAT(ids(Operation::registerClient, "pump"),
                ElementsAre("motor", "valve"));
    EXPECT_THAT(ids(Operation::registerClient, "motor"),
                ElementsAre("pump", "valve"));
    EXPECT_THAT(ids(Operation::getSharedClients, "valve"),
                ElementsAre("motor", "pump"));
    EXPECT_THAT(ids(Operation::putEvents, "pump", "open"),
                ElementsAre("motor", "valve"));
    EXPECT_THAT(ids(Operation::unregisterClient, "motor"),
                ElementsAre("pump", "valve"));
    EXPECT_THAT(ids(Operation::getSharedClients, "valve"), ElementsAre("pump"));
}

TEST_F(EventManagerTest, GetEventsAnswersWithTheQueueAndWhatToConsume) {
    answer(Operation::registerClient, "pump");
    answer(Operation::registerClient, "valve");
    answer(Operation::putEvents, "pump", "one");
    answer(Operation::putEvents, "pump", "two");
    EXPECT_EQ(*answer(Operation::getEvents, "valve").text, "onetwo");
    const Reply first = answer(Operation::getEvents, "valve", "ignored");
    EXPECT_EQ(*first.text, "onetwo");
    ASSERT_TRUE(first.consumption.has_value());
    EXPECT_EQ(first.consumption->caller.serverId, "plant");
    EXPECT_EQ(first.consumption->caller.clientId, "valve");
    manager.complete(*first.consumption);
    EXPECT_EQ(*answer(Operation::getEvents, "valve").text, "");
}

TEST_F(EventManagerTest, AnEmptyQueueLeavesNothingToConsume) {
    answer(Operation::registerClient, "pump");
    const Reply reply = answer(Operation::getEvents, "pump");
    EXPECT_EQ(*reply.text, "");
    EXPECT_FALSE(reply.consumption.has_value());
}

TEST_F(EventManagerTest, OnlyGetEventsConsumes) {
    for (const Operation operation :
         {Operation::registerClient, Operation::getSharedClients,
          Operation::putEvents, Operation::getStatus,
          Operation::unregisterClient}) {
        EXPECT_FALSE(answer(operation, "pump", "x").consumption.has_value());
    }
}

TEST_F(EventManagerTest, GetStatusAnswersWithItsBody) {
    EXPECT_EQ(*answer(Operation::getStatus, "", "OvMEM Status check").text,
              "OvMEM Status check");
    EXPECT_EQ(*answer(Operation::getStatus, "", "").text, "");
}

TEST_F(EventManagerTest, WhoIsNotRegisteredIsToldSo) {
    const std::vector<std::pair<Operation, std::string>> operations{
        {Operation::unregisterClient, "unregisterClient"},
        {Operation::getSharedClients, "getSharedClients"},
        {Operation::getEvents, "getEvents"},
        {Operation::putEvents, "putEvents"}};
    for (const auto& entry : operations) {
        const Operation operation = entry.first;
        EXPECT_EQ(notRegistered([&] { answer(operation, "pump", "x"); }),
                  "The client 'pump' is not registered with the server "
                  "'plant'. Call registerClient before " +
                      entry.second + ".");
    }
}

TEST_F(EventManagerTest, AnIdentityThatXmlCannotCarryIsRefused) {
    for (const char* id : {"a\rb", "\xFF", "\x01"}) {
        try {
            answer(Operation::registerClient, id);
            FAIL() << "registered";
        } catch (const Refusal& refusal) {
            EXPECT_EQ(refusal.status, -751);
            EXPECT_THAT(
                refusal.what(),
                testing::EndsWith("' cannot stand in an XML reply. Use UTF-8 "
                                  "without control characters for it."));
        }
    }
    EXPECT_THAT(ids(Operation::registerClient, "a\tb"), IsEmpty());
}

TEST_F(EventManagerTest, AClientWithWhichTheListWouldBeTooLongIsRefused) {
    const std::string costly(60000, '&');
    for (const char* number : {"1", "2", "3", "4", "5"}) {
        answer(Operation::registerClient, number + costly);
    }
    try {
        answer(Operation::registerClient, "6" + costly);
        ADD_FAILURE() << "no refusal";
    } catch (const Refusal& refusal) {
        EXPECT_EQ(refusal.status, -751);
        EXPECT_EQ(refusal.what(),
                  "The client " + shown("6" + costly) +
                      " cannot be registered with the server 'plant': the "
                      "list of its clients would become too long to be read. "
                      "Unregister clients that are no longer used, or use "
                      "another server.");
    }
    EXPECT_THAT(ids(Operation::registerClient, "valve"), SizeIs(5));
}
