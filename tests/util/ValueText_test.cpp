#include "OvMemCppBinding/util/ValueText.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "tests/util/CommaLocale.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;

class ValueTextUnderACommaLocale : public testing::Test {
private:
    OvMemTest::CommaLocale locale;
};

template <typename Value>
concept Writable = requires(Value value) {
    toString(value);
};

static_assert(Writable<std::string>);
static_assert(!Writable<const char*>, "a literal would be taken for a bool");

TEST(ValueText, WritesABoolAsADigit) {
    EXPECT_EQ(toString(true), "1");
    EXPECT_EQ(toString(false), "0");
}

TEST(ValueText, ReadsExactlyTwoTextsAsTrue) {
    EXPECT_TRUE(toBool("true"));
    EXPECT_TRUE(toBool("1"));
    for (const char* text : {"", "0", "false", "True", "TRUE", " 1", "1 ",
                             "true ", " true", "yes", "11", "01", "tru"})
        EXPECT_FALSE(toBool(text)) << text;
    EXPECT_FALSE(toBool(std::string("1\0", 2)));
}

TEST(ValueText, WritesAnIntInDecimal) {
    EXPECT_EQ(toString(0), "0");
    EXPECT_EQ(toString(-7), "-7");
    EXPECT_EQ(toString(1234567), "1234567");
    EXPECT_EQ(toString(std::numeric_limits<int>::max()), "2147483647");
    EXPECT_EQ(toString(std::numeric_limits<int>::min()), "-2147483648");
}

TEST(ValueText, WritesADoubleScientificWithSeventeenDigits) {
    EXPECT_EQ(toString(0.5), "5.00000000000000000e-01");
    EXPECT_EQ(toString(0.0), "0.00000000000000000e+00");
    EXPECT_EQ(toString(-0.0), "-0.00000000000000000e+00");
    EXPECT_EQ(toString(1e300), "1.00000000000000005e+300");
    EXPECT_EQ(toString(-1234.5), "-1.23450000000000000e+03");
}

TEST(ValueText, WritesAFloatWidenedToDouble) {
    EXPECT_EQ(toString(0.1f), "1.00000001490116119e-01");
    EXPECT_EQ(toString(0.1f), toString(static_cast<double>(0.1f)));
    EXPECT_EQ(toString(-3.5f), "-3.50000000000000000e+00");
}

TEST(ValueText, WritesAStringUnchanged) {
    const std::string text("a<&\0\xFF\n", 6);
    EXPECT_EQ(toString(text), text);
    EXPECT_EQ(toString(std::string()), "");
}

TEST(ValueText, ReadsTheEmptyTextAsZero) {
    EXPECT_EQ(toInt(""), 0);
    EXPECT_EQ(toDouble(""), 0.0);
    EXPECT_EQ(toFloat(""), 0.0f);
}

TEST(ValueText, ReadsAnInt) {
    EXPECT_EQ(toInt("42"), 42);
    EXPECT_EQ(toInt("+7"), 7);
    EXPECT_EQ(toInt("-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(toInt("2147483647"), std::numeric_limits<int>::max());
    EXPECT_EQ(toInt("010"), 10);
}

TEST(ValueText, ReadsAFloatingPointNumber) {
    EXPECT_EQ(toDouble("1.5e3"), 1500.0);
    EXPECT_EQ(toDouble("-.25"), -0.25);
    EXPECT_EQ(toFloat("0.1"), 0.1f);
    EXPECT_EQ(toFloat("-1E2"), -100.0f);
}

TEST(ValueText, SkipsLeadingWhiteSpaceAndIgnoresTheRest) {
    EXPECT_EQ(toInt("42 "), 42);
    EXPECT_EQ(toInt("12abc"), 12);
    EXPECT_EQ(toInt(" \t\n-3.9"), -3);
    EXPECT_EQ(toInt("0x10"), 0);
    EXPECT_EQ(toDouble(" 3.5 "), 3.5);
    EXPECT_EQ(toDouble("2.5,75"), 2.5);
    EXPECT_EQ(toFloat("\n1.25f"), 1.25f);
}

TEST(ValueText, ReadsATextThatIsNoNumberAsZero) {
    for (const char* text : {"abc", " ", "-", "+", ".", "e5", "--1", "true",
                             "nan", "inf", "\xD9\xA3"}) {
        EXPECT_EQ(toInt(text), 0) << text;
        EXPECT_EQ(toDouble(text), 0.0) << text;
        EXPECT_EQ(toFloat(text), 0.0f) << text;
    }
}

TEST(ValueText, ReadsAnIntOutOfRangeAsTheNearestOne) {
    EXPECT_EQ(toInt("2147483648"), std::numeric_limits<int>::max());
    EXPECT_EQ(toInt("99999999999999999999"), std::numeric_limits<int>::max());
    EXPECT_EQ(toInt("-2147483649"), std::numeric_limits<int>::min());
    EXPECT_EQ(toInt("-99999999999999999999"), std::numeric_limits<int>::min());
}

TEST(ValueText, ReadsAFloatingPointNumberOutOfRangeAsTheNearestOne) {
    EXPECT_EQ(toDouble("1e999"), std::numeric_limits<double>::max());
    EXPECT_EQ(toDouble("-1e999"), -std::numeric_limits<double>::max());
    EXPECT_EQ(toDouble("1e-999"), 0.0);
    EXPECT_EQ(toFloat("1e39"), std::numeric_limits<float>::max());
    EXPECT_EQ(toFloat("-1e39"), -std::numeric_limits<float>::max());
}

TEST(ValueText, AWrittenDoubleReadsBackUnchanged) {
    using Limits = std::numeric_limits<double>;
    for (double value : {0.1, -1.0 / 3, Limits::max(), Limits::lowest(),
                         Limits::min(), Limits::denorm_min()})
        EXPECT_EQ(toDouble(toString(value)), value);
    std::mt19937_64 random(20090601);
    for (int round = 0; round < 2000; ++round) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof(value));
        if (value == value && value <= Limits::max() &&
            value >= Limits::lowest()) {
            ASSERT_EQ(toDouble(toString(value)), value);
        }
    }
}

// docs/irregularities.md#not-finite-reads-as-zero
TEST(ValueText, WhatIsNotFiniteReadsBackAsZero) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(toString(infinity), "inf");
    EXPECT_EQ(toString(-infinity), "-inf");
    EXPECT_EQ(toString(std::copysign(nan, 1.0)), "nan");
    EXPECT_EQ(toString(std::copysign(nan, -1.0)), "-nan");
    EXPECT_EQ(toString(std::numeric_limits<float>::infinity()), "inf");
    for (const char* text : {"inf", "-inf", "nan", "-nan", "infinity"}) {
        EXPECT_EQ(toDouble(text), 0.0) << text;
        EXPECT_EQ(toFloat(text), 0.0f) << text;
    }
}

TEST(ValueText, AnExponentWithoutDigitsSpoilsTheNumber) {
    for (const char* text : {"12em", "12e", "12e+", "12E-x"}) {
        EXPECT_EQ(toDouble(text), 0.0) << text;
        EXPECT_EQ(toFloat(text), 0.0f) << text;
        EXPECT_EQ(toInt(text), 12) << text;
    }
    EXPECT_EQ(toDouble("12xm"), 12.0);
    EXPECT_EQ(toDouble("12e1m"), 120.0);
    EXPECT_EQ(toFloat("12e1e"), 120.0f);
}

TEST(ValueText, AWrittenIntReadsBackUnchanged) {
    for (int value : {0, -7, 1000000, std::numeric_limits<int>::max(),
                      std::numeric_limits<int>::min()})
        EXPECT_EQ(toInt(toString(value)), value);
}

TEST_F(ValueTextUnderACommaLocale, FloatingPointNumbersKeepThePoint) {
    EXPECT_EQ(toString(0.5), "5.00000000000000000e-01");
    EXPECT_EQ(toString(0.5f), "5.00000000000000000e-01");
    EXPECT_EQ(toDouble("0.5"), 0.5);
    EXPECT_EQ(toFloat("0.5"), 0.5f);
    EXPECT_EQ(toDouble("1.234,5"), 1.234);
}

TEST_F(ValueTextUnderACommaLocale, IntsFollowTheGlobalLocale) {
    EXPECT_EQ(toString(1234567), "1.234.567");
    EXPECT_EQ(toInt("1.234.567"), 1234567);
    EXPECT_EQ(toString(-7), "-7");
}

TEST_F(ValueTextUnderACommaLocale, BoolsAreDigitsStill) {
    EXPECT_EQ(toString(true), "1");
    EXPECT_TRUE(toBool("true"));
}

}  // namespace
