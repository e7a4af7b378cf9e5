#include "emulator/store/TextDigest.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

std::string hex(const TextDigest& digest) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (const char character : digest.bytes()) {
        const auto byte = static_cast<unsigned char>(character);
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

// The bytes 0, 1, 2 ...
std::string counting(int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) {
        bytes += static_cast<char>(i);
    }
    return bytes;
}

}  // namespace

// The published vectors, for the key of the bytes 0 to 15.
TEST(TextDigest, IsThatOfThePublishedVectors) {
    EXPECT_EQ(hex(TextDigest("")), "a3817f04ba25a8e66df67214c7550293");
    EXPECT_EQ(hex(TextDigest(counting(1))), "da87c1d86b99af44347659119b22fc45");
    EXPECT_EQ(hex(TextDigest(counting(8))), "3b62a9ba6258f5610f83e264f31497b4");
    EXPECT_EQ(hex(TextDigest(counting(15))),
              "5493e99933b0a8117e08ec0f97cfc3d9");
}

TEST(TextDigest, DiffersForEveryBitAndEveryLength) {
    std::set<std::string> seen;
    const std::string text = counting(70);
    for (std::size_t length = 0; length <= text.size(); ++length) {
        EXPECT_TRUE(seen.insert(hex(TextDigest(text.substr(0, length)))).second)
            << length;
    }
    for (std::size_t bit = 0; bit < text.size() * 8; ++bit) {
        std::string other = text;
        other[bit / 8] = static_cast<char>(other[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_TRUE(seen.insert(hex(TextDigest(other))).second) << bit;
    }
}
