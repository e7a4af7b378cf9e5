#include "emulator/manager/SharedClientsReplies.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

const std::string replyStart =
    "\n<ns0:SharedClientIDs xmlns:ns0=\"http://www.orvane.com/Schemas/"
    "OvModelEventManager/_2009_06/base\">";
const std::string replyEnd = "</ns0:SharedClientIDs>";

std::string element(const std::string& id) {
    return "<ns0:sharedClients>" + id + "</ns0:sharedClients>";
}

ClientList list(std::vector<std::string> ids) {
    return std::make_shared<const std::vector<std::string>>(std::move(ids));
}

}  // namespace

TEST(SharedClientsReplies, TheCallerIsLeftOut) {
    SharedClientsReplies replies;
    const ClientList clients = list({"motor", "pump", "valve"});
    EXPECT_EQ(*replies.reply({"plant", "pump"}, clients),
              replyStart + element("motor") + element("valve") + replyEnd);
    EXPECT_EQ(*replies.reply({"plant", "motor"}, clients),
              replyStart + element("pump") + element("valve") + replyEnd);
}

TEST(SharedClientsReplies, NobodyElseGivesAnElementWithoutContent) {
    SharedClientsReplies replies;
    EXPECT_EQ(*replies.reply({"plant", "pump"}, list({"pump"})),
              replyStart + replyEnd);
    EXPECT_EQ(*replies.reply({"office", "pump"}, list({})),
              replyStart + replyEnd);
}

TEST(SharedClientsReplies, IdentitiesAreEscaped) {
    SharedClientsReplies replies;
    EXPECT_EQ(
        *replies.reply({"plant", "pump"}, list({"", "<a & b>", "pump"})),
        replyStart + element("") + element("&lt;a &amp; b&gt;") + replyEnd);
}

TEST(SharedClientsReplies, AReplyIsWrittenOnceForAList) {
    SharedClientsReplies replies;
    const ClientList clients = list({"motor", "pump"});
    const auto first = replies.reply({"plant", "pump"}, clients);
    EXPECT_EQ(replies.reply({"plant", "pump"}, clients), first);
    EXPECT_NE(replies.reply({"plant", "motor"}, clients), first);
    EXPECT_EQ(replies.reply({"plant", "pump"}, clients), first);
}

TEST(SharedClientsReplies, ANewListGivesANewReply) {
    SharedClientsReplies replies;
    const auto first = replies.reply({"plant", "pump"}, list({"motor"}));
    EXPECT_EQ(*replies.reply({"plant", "pump"}, list({"motor", "valve"})),
              replyStart + element("motor") + element("valve") + replyEnd);
    EXPECT_EQ(*first, replyStart + element("motor") + replyEnd);
}

TEST(SharedClientsReplies, ServersAreKeptApart) {
    SharedClientsReplies replies;
    replies.reply({"plant", "pump"}, list({"motor"}));
    EXPECT_EQ(*replies.reply({"office", "pump"}, list({"printer"})),
              replyStart + element("printer") + replyEnd);
}

TEST(SharedClientsReplies, WhatIsKeptIsBounded) {
    SharedClientsReplies replies;
    const ClientList clients = list({std::string(1024 * 1024, 'x')});
    const auto first = replies.reply({"plant", "0"}, clients);
    for (int i = 1; i < 17; ++i) {
        replies.reply({"plant", std::to_string(i)}, clients);
    }
    EXPECT_EQ(first.use_count(), 1) << "still kept after 17 MiB";
    EXPECT_EQ(*replies.reply({"plant", "0"}, clients), *first);
}
