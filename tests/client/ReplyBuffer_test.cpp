#include "OvMemCppBinding/client/ReplyBuffer.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/PrivateAccess.h"
#include "tests/support/Thrown.h"

namespace Orvane::Net::OvModelEventManager::Client {

using OvMemTest::capacityOf;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;

namespace {

// `length` bytes of every value, none like its neighbours at a distance of a
// power of two.
std::string pattern(std::size_t length) {
    std::string bytes(length, '\0');
    for (std::size_t at = 0; at < length; ++at) {
        bytes[at] = static_cast<char>((at * 131) % 251);
    }
    return bytes;
}

std::string inPieces(const std::string& bytes, std::size_t size) {
    ReplyBuffer buffer;
    for (std::size_t at = 0; at < bytes.size(); at += size) {
        const std::string piece = bytes.substr(at, size);
        buffer.append(piece.data(), piece.size());
    }
    return buffer.text();
}

}  // namespace

TEST(ReplyBuffer, IsEmptyAtFirst) {
    EXPECT_EQ(ReplyBuffer().text(), "");
}

TEST(ReplyBuffer, AppendingNothingChangesNothing) {
    ReplyBuffer buffer;
    buffer.append("", 0);
    EXPECT_EQ(buffer.text(), "");
    buffer.append("ab", 2);
    buffer.append("", 0);
    EXPECT_EQ(buffer.text(), "ab");
}

TEST(ReplyBuffer, PiecesStandInTheirOrder) {
    ReplyBuffer buffer;
    buffer.append("one ", 4);
    buffer.append("two ", 4);
    buffer.append("three", 5);
    EXPECT_EQ(buffer.text(), "one two three");
}

TEST(ReplyBuffer, KeepsEveryByte) {
    const std::string bytes = pattern(1000);
    EXPECT_EQ(inPieces(bytes, 1000), bytes);
}

TEST(ReplyBuffer, KeepsTheBytesAcrossEveryGrowth) {
    for (const std::size_t length :
         {16383u, 16384u, 16385u, 32767u, 32768u, 32769u, 65536u, 65537u}) {
        const std::string bytes = pattern(length);
        for (const std::size_t size : {1000u, 16383u, 16384u}) {
            ASSERT_EQ(inPieces(bytes, size), bytes) << length << " by " << size;
        }
    }
}

TEST(ReplyBuffer, TheFirstBlockHoldsAFullReceiveBufferAndThenDoubles) {
    const std::string full(16384, 'x');
    ReplyBuffer buffer;
    EXPECT_EQ(capacityOf(buffer), 16384u);
    buffer.append(full.data(), full.size());
    EXPECT_EQ(capacityOf(buffer), 16384u);
    buffer.append("y", 1);
    EXPECT_EQ(capacityOf(buffer), 32768u);
    buffer.append(full.data(), full.size() - 1);
    EXPECT_EQ(capacityOf(buffer), 32768u);
    buffer.append("z", 1);
    EXPECT_EQ(capacityOf(buffer), 65536u);
    EXPECT_EQ(buffer.text(), full + "y" + full.substr(1) + "z");
}

TEST(ReplyBuffer, APieceMayNeedSeveralDoublings) {
    const std::string bytes = pattern(1000000);
    ReplyBuffer buffer;
    buffer.append(bytes.data(), bytes.size());
    EXPECT_EQ(buffer.text(), bytes);
}

// A sanitizer ends the process rather than refuse.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(ReplyBuffer, WithoutMemoryItThrowsAndKeepsWhatItHolds) {
    ReplyBuffer buffer;
    buffer.append("first", 5);
    const std::size_t tooMuch = std::size_t{1} << 62;
    EXPECT_EQ(thrownBy([&] { buffer.append(nullptr, tooMuch); }),
              (Thrown{"bad_alloc", 0, "std::bad_alloc"}));
    EXPECT_EQ(buffer.text(), "first");
}
#endif

TEST(ReplyBuffer, ItsTextStaysWhenMoreIsAppended) {
    ReplyBuffer buffer;
    buffer.append("first", 5);
    const std::string before = buffer.text();
    buffer.append(" second", 7);
    EXPECT_EQ(before, "first");
    EXPECT_EQ(buffer.text(), "first second");
}

}  // namespace Orvane::Net::OvModelEventManager::Client
