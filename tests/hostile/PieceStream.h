#ifndef TESTS_HOSTILE_PIECESTREAM_H
#define TESTS_HOSTILE_PIECESTREAM_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace OvMemTest {

// A text, so many times.
struct Piece {
    std::string text;
    std::size_t times = 1;
};

// The bytes of pieces, one chunk after the other, as a transport delivers
// them. However many they are, of a piece only its text is held, or that of a
// chunk.
class PieceStream {
public:
    static constexpr std::size_t chunkSize = 16384;

    explicit PieceStream(const std::vector<Piece>& pieces);

    // Full chunks, then what remains; nothing at the end.
    std::optional<std::string> next();

private:
    void add(const Piece& piece);

    std::vector<Piece> blocks;  // none of them empty
    std::size_t block = 0;      // where the next byte is
    std::size_t time = 0;
    std::size_t offset = 0;
};

}  // namespace OvMemTest

#endif
