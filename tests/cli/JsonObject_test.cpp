#include "cli/JsonObject.h"

#include <gtest/gtest.h>

using ovmem::cli::JsonObject;

namespace {

// The object with `text` borrowed, and the one with it in the object.
std::string borrowedLine(const std::string& text) {
    JsonObject object;
    object.add("before", "b");
    object.addBorrowed("events", text);
    object.add("after", "a");
    return object.line();
}

std::string ownedLine(const std::string& text) {
    JsonObject object;
    object.add("before", "b");
    object.add("events", text);
    object.add("after", "a");
    return object.line();
}

}  // namespace

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
              "{\"t\":\"\\\"\\\\\\n\\r\\t\\u0008\\u0001\\u001f\\u007f"
              "\\u0000/\"}\n");
}

TEST(JsonObject, OtherCharactersThatSteerATerminalAreEscapedToo) {
    JsonObject object;
    object.add("\u009B", "a\u0080\u009F\u00A0\u061C\u200E\u2028\u202E\u2069z");
    EXPECT_EQ(object.line(),
              "{\"\\u009b\":\"a\\u0080\\u009f\u00A0\\u061c\\u200e\\u2028"
              "\\u202e\\u2069z\"}\n");
}

TEST(JsonObject, AnInvisibleCharacterBeyondTheFirstPlaneIsEscapedAsTwo) {
    JsonObject object;
    object.add("t", "a\U000E0041\U0001D173\u200B");
    EXPECT_EQ(object.line(),
              "{\"t\":\"a\\udb40\\udc41\\ud834\\udd73\\u200b\"}\n");
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

TEST(JsonObject, ABorrowedTextStandsWhereItWasAdded) {
    EXPECT_EQ(borrowedLine("e\n"),
              "{\"before\":\"b\",\"events\":\"e\\n\",\"after\":\"a\"}\n");
    EXPECT_EQ(borrowedLine(""),
              "{\"before\":\"b\",\"events\":\"\",\"after\":\"a\"}\n");
    EXPECT_EQ(borrowedLine("\xFF\xFE\xFD"),
              "{\"before\":\"b\",\"eventsBase64\":\"//79\",\"after\":"
              "\"a\"}\n");
}

// Wherever a piece ends, it ends between two characters, or between two groups
// of base64.
TEST(JsonObject, ALongBorrowedTextIsEncodedAsIfItWereOnePiece) {
    for (const std::string character :
         {"x", "\"", "\u00A0", "\u2028", "\u20AC", "\U0001F600", "\xFF"}) {
        for (std::size_t before = 0; before < 5; ++before) {
            std::string text(before, 'x');
            while (text.size() < 150000) {
                text += character;
            }
            EXPECT_TRUE(borrowedLine(text) == ownedLine(text))
                << character << " after " << before;
        }
    }
}

TEST(JsonObject, ItIsWrittenInPiecesUntilNoMoreIsWanted) {
    const std::string text(100000, 'x');
    JsonObject object;
    object.addBorrowed("e", text);
    for (std::size_t wanted = 1; wanted < 6; ++wanted) {
        std::vector<std::string> pieces;
        object.write([&](std::string_view piece) {
            pieces.emplace_back(piece);
            return pieces.size() < wanted;
        });
        const std::vector<std::string> all = {
            "{\"e\":\"", std::string(49152, 'x'), std::string(49152, 'x'),
            std::string(1696, 'x'), "\"}\n"};
        EXPECT_EQ(pieces,
                  std::vector<std::string>(
                      all.begin(),
                      all.begin() + static_cast<std::ptrdiff_t>(wanted)));
    }
}
