#include "cli/Grace.h"

#include <clocale>

#include <gtest/gtest.h>

#include "cli/Failure.h"

using namespace ovmem::cli;
using std::chrono::milliseconds;

TEST(Grace, IsGivenInSecondsWithFractions) {
    EXPECT_EQ(parseGrace("0"), milliseconds(0));
    EXPECT_EQ(parseGrace("2.5"), milliseconds(2500));
    EXPECT_EQ(parseGrace(".25"), milliseconds(250));
    EXPECT_EQ(parseGrace("3600"), milliseconds(3600000));
}

TEST(Grace, WhatIsNoNumberFrom0To3600IsRefused) {
    for (const std::string text : {"", "five", "5s", " 5", "-1", "3600.001",
                                   "1e3", "nan", "inf", "1,5", "0x10"}) {
        try {
            parseGrace(text);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.exitCode, ExitCode::Usage);
            EXPECT_EQ(failure.text,
                      "--grace is '" + text +
                          "', which is not a number of seconds from 0 to "
                          "3600.");
            EXPECT_EQ(failure.advice,
                      "Give --grace a decimal number, for instance 2.5.");
        }
    }
}
