#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/Utf8Conversion.h"
#include "tests/util/ScriptedConverters.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;

struct Close {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, Close>;

Converter opened(const std::string& name) {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name.c_str(), &error));
    EXPECT_TRUE(U_SUCCESS(error)) << name;
    return converter;
}

// The conversion in one step, in buffers that are always large enough.
std::string convertedAtOnce(const std::string& text, const std::string& from,
                            const std::string& to) {
    UErrorCode error = U_ZERO_ERROR;
    std::vector<UChar> units(4 * text.size() + 16);
    const std::int32_t unitCount =
        ucnv_toUChars(opened(from).get(), units.data(),
                      static_cast<std::int32_t>(units.size()), text.data(),
                      static_cast<std::int32_t>(text.size()), &error);
    std::string bytes(8 * units.size(), '\0');
    const std::int32_t byteCount = ucnv_fromUChars(
        opened(to).get(), bytes.data(), static_cast<std::int32_t>(bytes.size()),
        units.data(), unitCount, &error);
    EXPECT_TRUE(U_SUCCESS(error)) << u_errorName(error);
    bytes.resize(static_cast<std::size_t>(byteCount));
    return bytes.substr(0, bytes.find('\0'));
}

class Utf8ConversionRandom : public testing::TestWithParam<const char*> {};

// Valid or not, and of any length that fits into one pass.
TEST_P(Utf8ConversionRandom, EqualsTheConversionInOneStep) {
    const std::string codePage = GetParam();
    const OvMemTest::ScriptedConverters converters(codePage);
    // Mostly what begins or continues a sequence in some code page.
    const std::string likely = "\x1B$()BJ~{}+-/aZ \n\x82\xA0\xC3\xE3\xF0\xFF";
    std::mt19937 random(20090601);
    for (int round = 0; round < 2000; ++round) {
        std::string text(random() % 40, '\0');
        for (char& byte : text) {
            byte = random() % 2 == 0 ? likely[random() % likely.size()]
                                     : static_cast<char>(1 + random() % 255);
        }
        const int length = static_cast<int>(text.size());
        ASSERT_EQ(toUtf8(text.data(), length),
                  convertedAtOnce(text, codePage, "UTF-8"));
        ASSERT_EQ(fromUtf8(text.data(), length),
                  convertedAtOnce(text, "UTF-8", codePage));
    }
}

INSTANTIATE_TEST_SUITE_P(CodePages, Utf8ConversionRandom,
                         testing::Values("UTF-8", "US-ASCII", "ISO-8859-1",
                                         "Shift_JIS", "GB18030", "ISO-2022-JP",
                                         "HZ-GB-2312", "UTF-7"));

}  // namespace
