#include "cli/Base64.h"

#include <gtest/gtest.h>

using ovmem::cli::toBase64;
using namespace std::string_view_literals;

TEST(Base64, NothingStaysNothing) {
    EXPECT_EQ(toBase64(""), "");
}

TEST(Base64, TheLastGroupIsPadded) {
    EXPECT_EQ(toBase64("p"), "cA==");
    EXPECT_EQ(toBase64("pu"), "cHU=");
    EXPECT_EQ(toBase64("pum"), "cHVt");
    EXPECT_EQ(toBase64("pump"), "cHVtcA==");
}

TEST(Base64, BytesOfEveryValueAreEncoded) {
    EXPECT_EQ(toBase64("\0\0\0"sv), "AAAA");
    EXPECT_EQ(toBase64("\xFF\xFE\xFD"), "//79");
    EXPECT_EQ(toBase64("\xFB\xEF\xBE"), "++++");
}
