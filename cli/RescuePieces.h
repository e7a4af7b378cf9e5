#ifndef CLI_RESCUEPIECES_H
#define CLI_RESCUEPIECES_H

#include <cstddef>
#include <list>
#include <optional>
#include <string>

#include "cli/SavedEvents.h"

// Events that did not fit in one file stand in several, its pieces.

namespace ovmem::cli {

// What a file's name says about it.
struct Piece {
    std::string whole;   // the name without the numbers
    std::size_t number;  // from 1 to total
    std::size_t total;   // at least 2
};

// None for the name of a file that holds everything.
std::optional<Piece> pieceOf(const std::string& rescueName);

// Puts the pieces of each text in their order, at the place of the one that is
// named first. The other files stay where they are.
//
// THROWS: Failure with ExitCode::Usage if a piece is missing or is there twice.
void orderPieces(std::list<SavedEvents>& files);

}  // namespace ovmem::cli

#endif
