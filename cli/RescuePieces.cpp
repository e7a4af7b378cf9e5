#include "cli/RescuePieces.h"

#include <charconv>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "cli/Failure.h"
#include "cli/RescuePlaces.h"

namespace ovmem::cli {

namespace {

const std::size_t MOST_NAMED = 5;

// 0 for what is no number.
std::size_t numberIn(std::string_view digits) {
    std::size_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? number : 0;
}

std::string missing(const std::string& whole, std::size_t total,
                    const std::set<std::size_t>& present) {
    std::string names;
    std::size_t named = 0;
    for (std::size_t i = 1; i <= total && named < MOST_NAMED; ++i) {
        if (present.count(i) == 0) {
            names += (named++ == 0 ? "" : ", ") + nameOfPiece(whole, i, total);
        }
    }
    const std::size_t others = total - present.size() - named;
    return others == 0 ? names
                       : names + " and " + std::to_string(others) + " more";
}

// The pieces of one text: those named, and where the first of them stands.
struct Whole {
    std::size_t position;
    std::set<std::size_t> present;
};

using Key = std::pair<std::string, std::size_t>;  // without numbers, total

void requireComplete(const Key& key, const Whole& whole) {
    if (whole.present.size() < key.second) {
        throw Failure{ExitCode::Usage,
                      "Pieces are missing: " +
                          missing(key.first, key.second, whole.present) + ".",
                      "Nothing was sent. Name all pieces of the text; 'ovmem "
                      "rescue list' names those there are. If some are lost, "
                      "write the others with 'ovmem rescue show'."};
    }
}

}  // namespace

std::optional<Piece> pieceOf(const std::string& rescueName) {
    const std::size_t dash = rescueName.rfind('-');
    const std::size_t of = rescueName.find("of", dash);
    if (dash == std::string::npos || of == std::string::npos) {
        return std::nullopt;
    }
    const std::string_view name = rescueName;
    const std::size_t number = numberIn(name.substr(dash + 1, of - dash - 1));
    const std::size_t total = numberIn(name.substr(of + 2));
    if (number == 0 || total < 2 || number > total) {
        return std::nullopt;
    }
    return Piece{rescueName.substr(0, dash), number, total};
}

void orderPieces(std::list<SavedEvents>& files) {
    using Rank = std::pair<std::size_t, std::size_t>;  // position, number
    std::map<Key, Whole> wholes;
    std::map<const SavedEvents*, Rank> ranks;
    for (const SavedEvents& file : files) {
        Rank rank{ranks.size(), 0};
        if (const auto piece = pieceOf(file.name())) {
            Whole& whole = wholes[{piece->whole, piece->total}];
            if (whole.present.empty()) {
                whole.position = rank.first;
            }
            if (!whole.present.insert(piece->number).second) {
                throw Failure{
                    ExitCode::Usage,
                    "Two of the files are the piece " + file.name() + ".",
                    "Nothing was sent. Name each piece once."};
            }
            rank = {whole.position, piece->number};
        }
        ranks[&file] = rank;
    }
    for (const auto& [key, whole] : wholes) {
        requireComplete(key, whole);
    }
    files.sort([&ranks](const SavedEvents& left, const SavedEvents& right) {
        return ranks[&left] < ranks[&right];
    });
}

}  // namespace ovmem::cli
