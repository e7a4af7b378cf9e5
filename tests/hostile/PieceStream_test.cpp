#include "tests/hostile/PieceStream.h"

#include <gtest/gtest.h>

namespace OvMemTest {

namespace {

using Chunks = std::vector<std::string>;

Chunks chunksOf(const std::vector<Piece>& pieces) {
    PieceStream stream(pieces);
    Chunks chunks;
    while (auto chunk = stream.next()) {
        chunks.push_back(*chunk);
    }
    EXPECT_EQ(stream.next(), std::nullopt);
    return chunks;
}

std::string wholeOf(const std::vector<Piece>& pieces) {
    std::string whole;
    for (const Piece& piece : pieces) {
        for (std::size_t time = 0; time < piece.times; ++time) {
            whole += piece.text;
        }
    }
    return whole;
}

std::string joined(const Chunks& chunks) {
    std::string whole;
    for (const std::string& chunk : chunks) {
        whole += chunk;
    }
    return whole;
}

}  // namespace

TEST(PieceStream, OfNothingHasNoChunk) {
    EXPECT_EQ(chunksOf({}), Chunks{});
    EXPECT_EQ(chunksOf({{"", 7}, {"text", 0}}), Chunks{});
}

TEST(PieceStream, JoinsShortPieces) {
    EXPECT_EQ(chunksOf({{"<r>"}, {"<a/>", 3}, {"", 2}, {"</r>"}}),
              Chunks{"<r><a/><a/><a/></r>"});
}

TEST(PieceStream, FillsEveryChunkButTheLast) {
    const Chunks chunks = chunksOf({{"x", PieceStream::chunkSize * 2 + 1}});
    ASSERT_EQ(chunks.size(), 3U);
    EXPECT_EQ(chunks[0], std::string(PieceStream::chunkSize, 'x'));
    EXPECT_EQ(chunks[1], chunks[0]);
    EXPECT_EQ(chunks[2], "x");
    EXPECT_EQ(chunksOf({{"x", PieceStream::chunkSize}}), Chunks{chunks[0]});
}

TEST(PieceStream, GivesEachPieceAsOftenAsItSays) {
    for (const std::size_t times : {1U, 2U, 3U, 5460U, 5461U, 5462U, 99999U}) {
        const std::vector<Piece> pieces{
            {"begin"}, {"abc", times}, {std::string(40000, 'z'), 2}, {"end"}};
        EXPECT_EQ(joined(chunksOf(pieces)), wholeOf(pieces)) << times;
    }
}

}  // namespace OvMemTest
