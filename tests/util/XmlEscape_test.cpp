#include "OvMemCppBinding/util/XmlEscape.h"

#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Orvane::Net::OvModelEventManager::Util::escape;
using Orvane::Net::OvModelEventManager::Util::unescape;
using namespace std::string_literals;

using Entities = std::vector<std::pair<char, std::string>>;

// In the order in which they are looked for.
const Entities& entities() {
    static const Entities table{
        {'&', "&amp;"},  {'<', "&lt;"},    {'>', "&gt;"},   {'%', "&#x25;"},
        {'"', "&quot;"}, {'\'', "&apos;"}, {'\n', "&#10;"}, {'\t', "&#9;"},
    };
    return table;
}

// The walk through a copy that is changed in place.
std::string escapedInPlace(std::string text) {
    for (std::size_t index = 0; index < text.size();) {
        std::size_t step = 1;
        for (const auto& [character, entity] : entities()) {
            if (text[index] == character) {
                text.replace(index, 1, entity);
                step = entity.size();
                break;
            }
        }
        index += step;
    }
    return text;
}

std::string unescapedInPlace(std::string text) {
    for (std::size_t index = 0; index < text.size(); ++index) {
        for (const auto& [character, entity] : entities()) {
            if (text.compare(index, entity.size(), entity) == 0) {
                text.replace(index, entity.size(), 1, character);
                break;
            }
        }
    }
    return text;
}

TEST(XmlEscape, LeavesTheEmptyTextEmpty) {
    EXPECT_EQ(escape(""), "");
    EXPECT_EQ(unescape(""), "");
}

TEST(XmlEscape, ReplacesTheEightCharactersOfTheTable) {
    EXPECT_EQ(escape("a<b & \"c\" 'd' 50%"),
              "a&lt;b &amp; &quot;c&quot; &apos;d&apos; 50&#x25;");
    EXPECT_EQ(escape("\t\n\"%&'<>"),
              "&#9;&#10;&quot;&#x25;&amp;&apos;&lt;&gt;");
}

TEST(XmlEscape, ReplacesNoOtherByte) {
    for (int value = 0; value < 256; ++value) {
        const std::string byte(1, static_cast<char>(value));
        std::string expected = byte;
        for (const auto& [character, entity] : entities()) {
            if (byte[0] == character)
                expected = entity;
        }
        EXPECT_EQ(escape(byte), expected) << value;
        EXPECT_EQ(escape("x" + byte + "y"), "x" + expected + "y") << value;
        EXPECT_EQ(unescape(byte), byte) << value;
        EXPECT_EQ(unescape("&" + byte), "&" + byte) << value;
    }
}

TEST(XmlEscape, EscapesTabAndLineFeedButNotCarriageReturn) {
    EXPECT_EQ(escape("a\tb\nc\rd\r\n"), "a&#9;b&#10;c\rd\r&#10;");
    EXPECT_EQ(unescape("a&#9;b&#10;c\rd\r&#10;"), "a\tb\nc\rd\r\n");
}

TEST(XmlEscape, PassesUtf8InBothDirections) {
    const std::string text =
        "Gr\xC3\xBC\xC3\x9F"
        "e \xE2\x82\xAC"
        "\xF0\x9F\x9A\x80";
    EXPECT_EQ(escape(text), text);
    EXPECT_EQ(unescape(text), text);
}

TEST(XmlEscape, KeepsBytesBehindANul) {
    EXPECT_EQ(escape("a\0<\0"s), "a\0&lt;\0"s);
    EXPECT_EQ(unescape("a\0&lt;\0"s), "a\0<\0"s);
}

TEST(XmlEscape, NeverEscapesWhatItProduced) {
    EXPECT_EQ(escape("&"), "&amp;");
    EXPECT_EQ(escape("&amp;"), "&amp;amp;");
    EXPECT_EQ(escape("&&"), "&amp;&amp;");
}

TEST(XmlEscape, LeavesItsArgumentUnchanged) {
    const std::string plain = "a<b";
    const std::string escaped = "a&lt;b";
    EXPECT_EQ(escape(plain), escaped);
    EXPECT_EQ(unescape(escaped), plain);
    EXPECT_EQ(plain, "a<b");
    EXPECT_EQ(escaped, "a&lt;b");
}

TEST(XmlUnescape, UnderstandsTheEightForms) {
    EXPECT_EQ(unescape("&#9;&#10;&quot;&#x25;&amp;&apos;&lt;&gt;"),
              "\t\n\"%&'<>");
}

TEST(XmlUnescape, NeverCombinesWhatItProducedWithWhatFollows) {
    EXPECT_EQ(unescape("&amp;lt;"), "&lt;");
    EXPECT_EQ(unescape("&amp;amp;amp;"), "&amp;amp;");
    EXPECT_EQ(unescape("&&lt;"), "&<");
    EXPECT_EQ(unescape("&&amp;lt;"), "&&lt;");
}

TEST(XmlUnescape, KeepsEveryOtherForm) {
    for (const char* text :
         {"&", "a & b", "&nbsp;", "&#13;", "&#x9;", "&#xA;", "&#37;", "&AMP;",
          "&Lt;", "&#X25;", "&#010;", "&# 9;", "& lt;", "&;", "&&", ";&"})
        EXPECT_EQ(unescape(text), text);
    EXPECT_EQ(unescape("&#x25;&#37;"), "%&#37;");
}

TEST(XmlUnescape, WantsTheSemicolon) {
    for (const auto& [character, entity] : entities()) {
        const std::string open = entity.substr(0, entity.size() - 1);
        EXPECT_EQ(unescape(open), open);
        EXPECT_EQ(unescape(open + " ;"), open + " ;");
        EXPECT_EQ(unescape(open + entity), open + character);
    }
}

TEST(XmlEscape, EqualsTheWalkInPlaceOnAnyText) {
    static const std::vector<std::string> pieces{
        "&",  "&amp;", "&lt;", "&gt;", "&#x25;", "&quot;", "&apos;",
        "&#", "&#10;", "&#9;", "&amp", "lt;",    "#10;",   ";",
        "<",  ">",     "%",    "\"",   "'",      "\n",     "\t",
        "\r", "x",     "\xC3", "\0"s};
    std::mt19937 random(20090601);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto count = random() % 20; count != 0; --count)
            text += pieces[random() % pieces.size()];
        ASSERT_EQ(escape(text), escapedInPlace(text));
        ASSERT_EQ(unescape(text), unescapedInPlace(text));
        ASSERT_EQ(unescape(escape(text)), text);
    }
}

TEST(XmlEscape, EqualsTheWalkInPlaceOnRandomBytes) {
    std::mt19937 random(42);
    for (int round = 0; round < 500; ++round) {
        std::string text(random() % 1024, '\0');
        for (char& byte : text)
            byte = static_cast<char>(random() & 0xFF);
        ASSERT_EQ(escape(text), escapedInPlace(text));
        ASSERT_EQ(unescape(text), unescapedInPlace(text));
        ASSERT_EQ(unescape(escape(text)), text);
    }
}

// In place, each of the first two would move some 10^12 bytes; looking for the
// end of what is no entity, the third would read 10^11.
// The text is put together in pieces of some thousand bytes.
TEST(XmlEscape, CutsNothingWhereOnePieceEndsAndTheNextBegins) {
    for (const auto& [character, entity] : entities()) {
        for (std::size_t before = 4080; before <= 4104; ++before) {
            const std::string text = std::string(before, 'a') +
                                     std::string(3, character) +
                                     std::string(5000, 'b');
            EXPECT_EQ(escape(text), escapedInPlace(text))
                << entity << " behind " << before;
        }
        for (std::size_t shift = 0; shift < 8; ++shift) {
            const std::string text =
                std::string(shift, 'a') + std::string(3000, character);
            EXPECT_EQ(escape(text), escapedInPlace(text))
                << entity << " behind " << shift << ", and on";
        }
    }
}

TEST(XmlEscape, CostsTimeLinearInTheLengthOfTheText) {
    const std::size_t length = std::size_t{2} << 20;
    std::string entityText;
    entityText.reserve(5 * length);
    for (std::size_t count = 0; count < length; ++count)
        entityText += "&#10;";
    const std::string lineFeeds(length, '\n');
    EXPECT_TRUE(escape(lineFeeds) == entityText);
    EXPECT_TRUE(unescape(entityText) == lineFeeds);

    const std::string ampersands(length / 4, '&');
    EXPECT_TRUE(unescape(ampersands) == ampersands);
}

}  // namespace
