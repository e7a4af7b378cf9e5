#include "cli/JsonObject.h"

#include <gtest/gtest.h>

using ovmem::cli::JsonObject;

TEST(JsonObject, WithoutMembersItIsEmpty) {
    EXPECT_EQ(JsonObject().line(), "{}\n");
}

TEST(JsonObject, MembersStandInTheOrderOfTheCalls) {
    JsonObject object;
    object.add("command", "put");
    object.add("bytes", -3LL);
    object.add("alive", true);
    object.add("dead", false);
    object.add("clients", std::vector<std::string>{"b", "a"});
    EXPECT_EQ(object.line(),
              "{\"command\":\"put\",\"bytes\":-3,\"alive\":true,"
              "\"dead\":false,\"clients\":[\"b\",\"a\"]}\n");
}

TEST(JsonObject, AnEmptyListIsAnEmptyList) {
    JsonObject object;
    object.add("clients", std::vector<std::string>());
    EXPECT_EQ(object.line(), "{\"clients\":[]}\n");
}

TEST(JsonObject, AnEmptyTextInAListIsKept) {
    JsonObject object;
    object.add("clients", std::vector<std::string>{"", "a", ""});
    EXPECT_EQ(object.line(), "{\"clients\":[\"\",\"a\",\"\"]}\n");
}

TEST(JsonObject, QuotesBackslashesAndControlCharactersAreEscaped) {
    JsonObject object;
    object.add("t", std::string("\"\\\n\r\t\b\x01\x1F\x7F\0/", 11));
    EXPECT_EQ(object.line(),
              "{\"t\":\"\\\"\\\\\\n\\r\\t\\u0008\\u0001\\u001f\x7F\\u0000/\"}"
              "\n");
}

TEST(JsonObject, Utf8StaysAsItIs) {
    JsonObject object;
    object.add("t", "Kühlwasser 20 °C");
    EXPECT_EQ(object.line(), "{\"t\":\"Kühlwasser 20 °C\"}\n");
}

TEST(JsonObject, ATextThatIsNotUtf8IsGivenInBase64UnderAnotherName) {
    JsonObject object;
    object.add("events", "\xFF\xFE\xFD");
    EXPECT_EQ(object.line(), "{\"eventsBase64\":\"//79\"}\n");
}

TEST(JsonObject, AListWithOneTextThatIsNotUtf8IsGivenInBase64AsAWhole) {
    JsonObject object;
    object.add("clients", std::vector<std::string>{"pum", "\xFF\xFE\xFD"});
    EXPECT_EQ(object.line(), "{\"clientsBase64\":[\"cHVt\",\"//79\"]}\n");
}
