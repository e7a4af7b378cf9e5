#include "tests/cli/ScriptedCliTest.h"

using OvMemTest::CliTest;
using OvMemTest::exchange;
using OvMemTest::Outcome;

namespace {

using Json = CliTest;
using ScriptedJson = OvMemTest::ScriptedCliTest;

}  // namespace

TEST_F(Json, EachCommandWritesOneObjectAndNoWords) {
    EXPECT_EQ(ovmem.run({"status", "--json"}),
              (Outcome{0, "{\"command\":\"status\",\"alive\":true}\n", ""}));
    EXPECT_EQ(as("valve").run({"register", "--json"}),
              (Outcome{0,
                       "{\"command\":\"register\",\"server\":\"plant\","
                       "\"client\":\"valve\",\"sharedClients\":[]}\n",
                       ""}));
    EXPECT_EQ(as("pump").input("a\tb\n").run({"put", "--json"}),
              (Outcome{0,
                       "{\"command\":\"put\",\"bytes\":4,"
                       "\"sharedClients\":[\"valve\"]}\n",
                       ""}));
    EXPECT_EQ(as("valve").run({"get", "--json"}),
              (Outcome{0,
                       "{\"command\":\"get\",\"bytes\":4,\"events\":\"a\\tb\\n"
                       "\",\"sharedClients\":[\"pump\"]}\n",
                       ""}));
    EXPECT_EQ(as("valve").run({"clients", "--json"}),
              (Outcome{0,
                       "{\"command\":\"clients\","
                       "\"sharedClients\":[\"pump\"]}\n",
                       ""}));
    EXPECT_EQ(as("valve").run({"unregister", "--json"}),
              (Outcome{0,
                       "{\"command\":\"unregister\","
                       "\"sharedClients\":[\"pump\"]}\n",
                       ""}));
}

TEST_F(Json, EventsThatAreNotUtf8AreGivenInBase64) {
    registerClient("valve");
    EXPECT_EQ(as("pump").input("\xFF\xFE\xFD").run({"put"}).exitCode, 0);
    EXPECT_EQ(as("valve").run({"get", "--json"}),
              (Outcome{0,
                       "{\"command\":\"get\",\"bytes\":3,\"eventsBase64\":"
                       "\"//79\",\"sharedClients\":[\"pump\"]}\n",
                       ""}));
}

TEST_F(ScriptedJson, ANulInTheReplyIsKept) {
    script(exchange("<r/>") + exchange(std::string("a\0b", 3)) +
           exchange("<r/>"));
    EXPECT_EQ(as("valve").run({"get", "--json"}),
              (Outcome{0,
                       "{\"command\":\"get\",\"bytes\":3,\"events\":"
                       "\"a\\u0000b\",\"sharedClients\":[]}\n",
                       ""}));
}

TEST_F(ScriptedJson, AWrongAnswerToTheStatusCheckIsNotAlive) {
    script(exchange("OvMEM Status check\n"));
    EXPECT_EQ(ovmem.run({"status", "--json"}),
              (Outcome{10, "{\"command\":\"status\",\"alive\":false}\n", ""}));
}
