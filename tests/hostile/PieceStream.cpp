#include "tests/hostile/PieceStream.h"

namespace OvMemTest {

PieceStream::PieceStream(const std::vector<Piece>& pieces) {
    for (const Piece& piece : pieces) {
        add(piece);
    }
}

// Texts of a byte or two would take most of the time that is measured.
void PieceStream::add(const Piece& piece) {
    if (piece.text.empty()) {
        return;
    }
    Piece many{piece.text, piece.times};
    std::size_t inBlock = 1;
    while (many.text.size() < chunkSize && inBlock * 2 <= piece.times) {
        many.text += many.text;
        inBlock *= 2;
    }
    many.times = piece.times / inBlock;
    for (const Piece& rest : {many, Piece{piece.text, piece.times % inBlock}}) {
        if (rest.times > 0) {
            blocks.push_back(rest);
        }
    }
}

std::optional<std::string> PieceStream::next() {
    std::string chunk;
    chunk.reserve(chunkSize);
    while (chunk.size() < chunkSize && block < blocks.size()) {
        const Piece& piece = blocks[block];
        const std::size_t before = chunk.size();
        chunk.append(piece.text, offset, chunkSize - before);
        offset += chunk.size() - before;
        if (offset == piece.text.size()) {
            offset = 0;
            ++time;
        }
        if (time == piece.times) {
            time = 0;
            ++block;
        }
    }
    return chunk.empty() ? std::nullopt : std::optional(std::move(chunk));
}

}  // namespace OvMemTest
