#include "OvMemCppBinding/util/Utf8Conversion.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include <gtest/gtest.h>

#include "tests/support/Thrown.h"
#include "tests/util/ScriptedConverters.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;
using namespace std::string_literals;
using OvMemTest::nothingThrown;
using OvMemTest::ScriptedConverters;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;

constexpr std::size_t maxUnits = 20480;

int lengthOf(const std::string& text) {
    return static_cast<int>(text.size());
}

std::string toUtf8(const std::string& text) {
    return Orvane::Net::OvModelEventManager::Util::toUtf8(text.data(),
                                                          lengthOf(text));
}

std::string fromUtf8(const std::string& text) {
    return Orvane::Net::OvModelEventManager::Util::fromUtf8(text.data(),
                                                            lengthOf(text));
}

std::string repeated(std::size_t count, const std::string& text) {
    std::string whole;
    for (std::size_t index = 0; index < count; ++index)
        whole += text;
    return whole;
}

struct Sizing {
    std::size_t length;
    std::uint64_t units;
    std::uint64_t wideBytes;
};

class UnicodeConverterSizing : public testing::TestWithParam<Sizing> {};

TEST_P(UnicodeConverterSizing, FollowsTheLengthUpToTheLimit) {
    for (const bool wide : {true, false}) {
        const UnicodeConverter converter(wide, GetParam().length);
        EXPECT_EQ(converter.unicodeCapacity, GetParam().units);
        EXPECT_EQ(converter.byteCapacity,
                  wide ? GetParam().wideBytes : GetParam().units);
        ASSERT_NE(converter.unicodeBuffer, nullptr);
        ASSERT_NE(converter.byteBuffer, nullptr);
        EXPECT_EQ(converter.unicodeBuffer[0], 0);
        EXPECT_EQ(converter.byteBuffer[0], '\0');
        // Room for the terminators, which a sanitizer would miss.
        converter.unicodeBuffer[converter.unicodeCapacity] = 0;
        converter.byteBuffer[converter.byteCapacity] = '\0';
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lengths, UnicodeConverterSizing,
    testing::Values(Sizing{0, 0, 0}, Sizing{1, 1, 1}, Sizing{2, 2, 3},
                    Sizing{3, 3, 4}, Sizing{100, 100, 150},
                    Sizing{20479, 20479, 30718}, Sizing{20480, 20480, 30720},
                    Sizing{20481, 20480, 30720},
                    Sizing{static_cast<std::size_t>(-1), 20480, 30720}),
    [](const auto& test) {
        return "Bytes" + std::to_string(test.param.length);
    });

TEST(UnicodeConverter, OpensTheDefaultConverterAndUtf8) {
    ScriptedConverters converters("ISO-8859-1");
    {
        const UnicodeConverter converter(true, 1);
        UErrorCode error = U_ZERO_ERROR;
        EXPECT_STREQ(ucnv_getName(converter.defaultConverter.get(), &error),
                     "ISO-8859-1");
        EXPECT_STREQ(ucnv_getName(converter.utf8Converter.get(), &error),
                     "UTF-8");
    }
    EXPECT_EQ(converters.calls().size(), 4u);
    EXPECT_EQ(ScriptedConverters::Calls(converters.calls().begin(),
                                        converters.calls().begin() + 2),
              (ScriptedConverters::Calls{"open default", "open UTF-8"}));
}

TEST(UnicodeConverter, ReleasesEverythingAndMayDoSoAgain) {
    ScriptedConverters converters("ISO-8859-1");
    UnicodeConverter converter(true, 1);
    converter.release();
    EXPECT_EQ(converter.unicodeBuffer, nullptr);
    EXPECT_EQ(converter.byteBuffer, nullptr);
    EXPECT_EQ(converter.defaultConverter, nullptr);
    EXPECT_EQ(converter.utf8Converter, nullptr);
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): of now.
    const auto released = converters.calls();
    EXPECT_EQ(released,
              (ScriptedConverters::Calls{"open default", "open UTF-8",
                                         "close ISO-8859-1", "close UTF-8"}));
    converter.release();
    EXPECT_EQ(converters.calls(), released);
}

TEST(UnicodeConverter, SaysWhyTheDefaultConverterDidNotOpen) {
    ScriptedConverters converters;
    converters.failOpening(0, U_FILE_ACCESS_ERROR);
    EXPECT_EQ(thrownBy([] { UnicodeConverter(true, 1); }),
              (Thrown{"Utf8ConversionException", 0,
                      "Error opening converter U_FILE_ACCESS_ERROR\n"}));
    EXPECT_EQ(converters.calls(), ScriptedConverters::Calls{"open default"});
}

TEST(UnicodeConverter, SaysWhyUtf8DidNotOpenAndClosesTheOtherOne) {
    ScriptedConverters converters("ISO-8859-1");
    converters.failOpening(1, U_MEMORY_ALLOCATION_ERROR);
    EXPECT_EQ(thrownBy([] { UnicodeConverter(false, 1); }),
              (Thrown{"Utf8ConversionException", 0,
                      "Error opening converter U_MEMORY_ALLOCATION_ERROR\n"}));
    EXPECT_EQ(converters.calls(),
              (ScriptedConverters::Calls{"open default", "open UTF-8",
                                         "close ISO-8859-1"}));
}

TEST(UnicodeConverter, AnUnknownCodePageIsAFailure) {
    const ScriptedConverters converters("no-such-code-page");
    EXPECT_EQ(thrownBy([] { toUtf8("a"); }),
              (Thrown{"Utf8ConversionException", 0,
                      "Error opening converter U_FILE_ACCESS_ERROR\n"}));
}

TEST(UnicodeConverter, AWarningOnOpeningIsASuccess) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_close(ucnv_open("Shift_JIS", &status));
    ASSERT_EQ(status, U_AMBIGUOUS_ALIAS_WARNING);
    const ScriptedConverters converters("Shift_JIS");
    EXPECT_EQ(toUtf8("\x82\xA0"), "\xE3\x81\x82");
}

TEST(Utf8Conversion, TheEmptyTextStaysEmpty) {
    EXPECT_EQ(toUtf8(""), "");
    EXPECT_EQ(fromUtf8(""), "");
    EXPECT_EQ(Orvane::Net::OvModelEventManager::Util::toUtf8(nullptr, 0), "");
    EXPECT_EQ(Orvane::Net::OvModelEventManager::Util::fromUtf8(nullptr, 0), "");
}

TEST(Utf8Conversion, ANegativeLengthIsNoText) {
    using namespace Orvane::Net::OvModelEventManager;
    EXPECT_EQ(Util::toUtf8("text", -1), "");
    EXPECT_EQ(Util::fromUtf8("text", std::numeric_limits<int>::min()), "");
}

TEST(Utf8Conversion, TakesAsManyBytesAsItIsTold) {
    using namespace Orvane::Net::OvModelEventManager;
    EXPECT_EQ(Util::toUtf8("text", 2), "te");
    EXPECT_EQ(Util::fromUtf8("text", 2), "te");
}

TEST(Utf8Conversion, ConvertsFromAndToTheDefaultCodePage) {
    const ScriptedConverters converters("ISO-8859-1");
    EXPECT_EQ(toUtf8("\xE9"), "\xC3\xA9");
    EXPECT_EQ(fromUtf8("\xC3\xA9"), "\xE9");
    EXPECT_EQ(toUtf8("Gr\xFC\xDF"
                     "e\r\n"),
              "Gr\xC3\xBC\xC3\x9F"
              "e\r\n");
    EXPECT_EQ(fromUtf8("Gr\xC3\xBC\xC3\x9F"
                       "e\r\n"),
              "Gr\xFC\xDF"
              "e\r\n");
}

TEST(Utf8Conversion, OpensAndClosesBothConvertersInEveryCall) {
    for (const auto convert : {toUtf8, fromUtf8}) {
        ScriptedConverters converters("ISO-8859-1");
        convert("a");
        auto calls = converters.calls();
        ASSERT_EQ(calls.size(), 4u);
        std::sort(calls.begin() + 2, calls.end());
        EXPECT_EQ(calls, (ScriptedConverters::Calls{
                             "open default", "open UTF-8", "close ISO-8859-1",
                             "close UTF-8"}));
    }
}

TEST(Utf8Conversion, EveryByteOfACodePageComesBack) {
    const ScriptedConverters converters("ISO-8859-1");
    for (int value = 1; value < 256; ++value) {
        const std::string byte(1, static_cast<char>(value));
        EXPECT_EQ(fromUtf8(toUtf8(byte)), byte) << value;
    }
}

TEST(Utf8Conversion, PassesUtf8WhereThatIsTheDefault) {
    const ScriptedConverters converters("UTF-8");
    const std::string text = "a \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x9A\x80 z";
    EXPECT_EQ(toUtf8(text), text);
    EXPECT_EQ(fromUtf8(text), text);
}

TEST(Utf8Conversion, WritesASubstituteForWhatTheCodePageLacks) {
    const ScriptedConverters converters("ISO-8859-1");
    EXPECT_EQ(fromUtf8("1 \xE2\x82\xAC"), "1 \x1A");
}

TEST(Utf8Conversion, WritesAReplacementForWhatItCannotDecode) {
    const std::string replacement = "\xEF\xBF\xBD";
    {
        const ScriptedConverters converters("UTF-8");
        EXPECT_EQ(toUtf8("a\xFF"
                         "b"),
                  "a" + replacement + "b");
        EXPECT_EQ(toUtf8("a\xE2\x82"), "a" + replacement);
        EXPECT_EQ(fromUtf8("a\xFF"
                           "b"),
                  "a" + replacement + "b");
    }
    const ScriptedConverters converters("US-ASCII");
    EXPECT_EQ(toUtf8("a\xE9"
                     "b"),
              "a" + replacement + "b");
    EXPECT_EQ(fromUtf8("a\xFF"
                       "b"),
              "a\x1A"
              "b");
}

TEST(Utf8Conversion, ANulEndsThePieceOfItsPass) {
    const ScriptedConverters converters("ISO-8859-1");
    EXPECT_EQ(toUtf8("a\0b"s), "a");
    EXPECT_EQ(fromUtf8("a\0b"s), "a");
    EXPECT_EQ(toUtf8("\0"s), "");
    // The next pass through the buffers is a piece of its own.
    const std::string cut = "a\0"s + std::string(maxUnits - 2, 'x');
    EXPECT_EQ(toUtf8(cut + "yz"), "ayz");
    EXPECT_EQ(fromUtf8(cut + "yz"), "ayz");
    // So is what one pass has to write in two steps.
    EXPECT_TRUE(toUtf8("a\0"s + std::string(maxUnits - 2, '\xE9')) ==
                "a" +
                    repeated((2 * (maxUnits - 2) + 2 - 30720) / 2, "\xC3\xA9"));
}

// From UTF-8 a step writes no more bytes than a pass has units.
TEST(Utf8Conversion, ANulOnTheWayBackEndsThePieceOfItsStep) {
    const ScriptedConverters converters("UTF-8");
    const std::size_t accents = maxUnits - 2;
    const std::size_t cut = (maxUnits - 2) / 2;
    EXPECT_TRUE(fromUtf8("a\0"s + repeated(accents, "\xC3\xA9")) ==
                "a" + repeated(accents - cut, "\xC3\xA9"));
}

// What becomes of a character of which the last byte is missing: in the last
// pass, which begins with more bytes than a buffer has units, or with fewer.
TEST(Utf8Conversion, ABrokenEndIsDroppedOnlyBehindALongLastPass) {
    const ScriptedConverters converters("UTF-8");
    const std::string cut = "\xE2\x82";
    const std::string euro = "\xE2\x82\xAC";
    for (const std::string& text :
         {std::string(maxUnits - 1, 'x'), repeated(6827, euro),
          repeated(10000, euro), repeated(maxUnits - 1, euro),
          std::string(2 * maxUnits - 1, 'x')}) {
        SCOPED_TRACE(text.size());
        EXPECT_TRUE(toUtf8(text + cut) == text);
        EXPECT_TRUE(fromUtf8(text + cut) == text);
    }
    for (const std::string& text :
         {std::string(), std::string(maxUnits - 2, 'x'), repeated(6826, euro),
          std::string(maxUnits, 'x'), repeated(maxUnits, euro),
          std::string(2 * maxUnits, 'x')}) {
        SCOPED_TRACE(text.size());
        EXPECT_TRUE(toUtf8(text + cut) == text + "\xEF\xBF\xBD");
        EXPECT_TRUE(fromUtf8(text + cut) == text + "\xEF\xBF\xBD");
    }
}

class Utf8ConversionAtTheLimit
    : public testing::TestWithParam<std::tuple<std::string, std::string>> {};

// The character stands at every place around the end of a pass.
TEST_P(Utf8ConversionAtTheLimit, LosesNothing) {
    const auto& [codePage, character] = GetParam();
    const ScriptedConverters converters(codePage);
    for (std::size_t before = maxUnits - 5; before <= maxUnits + 2; ++before) {
        for (const std::size_t after :
             {std::size_t{0}, std::size_t{1}, maxUnits, 3 * maxUnits}) {
            SCOPED_TRACE(std::to_string(before) + " " + std::to_string(after));
            const std::string text =
                std::string(before, 'x') + character + std::string(after, 'y');
            const std::string wide = toUtf8(text);
            ASSERT_TRUE(fromUtf8(wide) == text);
            if (codePage == "UTF-8") {
                ASSERT_TRUE(wide == text);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Characters, Utf8ConversionAtTheLimit,
    testing::Values(std::tuple("UTF-8", "z"), std::tuple("UTF-8", "\xC3\xA9"),
                    std::tuple("UTF-8", "\xE2\x82\xAC"),
                    std::tuple("UTF-8", "\xF0\x9F\x9A\x80"),
                    std::tuple("ISO-8859-1", "\xE9"),
                    std::tuple("Shift_JIS", "\x82\xA0"),
                    std::tuple("GB18030", "\x94\x39\xDA\x33")));

TEST(Utf8Conversion, LosesNothingInATextOfManyPasses) {
    for (const char* character :
         {"z", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x9A\x80"}) {
        const ScriptedConverters converters("UTF-8");
        for (const std::size_t shift : {0u, 1u, 2u, 3u}) {
            const std::string text =
                std::string(shift, '.') + repeated(70000, character);
            ASSERT_TRUE(toUtf8(text) == text) << character << shift;
            ASSERT_TRUE(fromUtf8(text) == text) << character << shift;
        }
    }
    const ScriptedConverters converters("ISO-8859-1");
    const std::string narrow(70000, '\xE9');
    const std::string wide = repeated(70000, "\xC3\xA9");
    EXPECT_TRUE(toUtf8(narrow) == wide);
    EXPECT_TRUE(fromUtf8(wide) == narrow);
}

// A flush in the middle would write "ESC ( B ESC $ B" there.
TEST(Utf8Conversion, AStatefulCodePageKeepsItsStateFromPassToPass) {
    const ScriptedConverters converters("ISO-2022-JP");
    const std::size_t count = 2 * maxUnits + 100;
    EXPECT_TRUE(fromUtf8(repeated(count, "\xE3\x81\x82")) ==
                "\x1B$B" + repeated(count, "$\"") + "\x1B(B");
    EXPECT_TRUE(toUtf8("\x1B$B" + repeated(count, "$\"") + "\x1B(B") ==
                repeated(count, "\xE3\x81\x82"));
}

TEST(Utf8Conversion, AReportOfAnErrorGoesNowhere) {
    UErrorCode error = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open("UTF-8", &error);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(thrownBy([&] {
                  reportConversionError(converter, U_ZERO_ERROR, true);
                  reportConversionError(converter, U_INVALID_CHAR_FOUND, true);
                  reportConversionError(converter, U_INTERNAL_PROGRAM_ERROR,
                                        false);
              }),
              nothingThrown);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ucnv_close(converter);
}

}  // namespace
