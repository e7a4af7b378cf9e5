#ifndef TESTS_HOSTILE_HOSTILEREPLY_H
#define TESTS_HOSTILE_HOSTILEREPLY_H

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tests/hostile/PieceStream.h"

namespace OvMemTest {

// What becomes of a reply: the whole text of the DomException in which it
// ends, empty if it is accepted; the identifiers that the caller has then, in
// words; and how often a file and a socket was asked for on the way.
struct Fate {
    std::string text;
    std::string identifiers = {};
    int files = 0;
    int sockets = 0;

    bool operator==(const Fate&) const = default;
};

// Identifiers in quotes, in their order. Where that is long, how many, how
// many bytes and a hash.
std::string inWords(const std::vector<std::string>& identifiers);

std::ostream& operator<<(std::ostream& stream, const Fate& fate);

// A reply that wants to do harm, or could.
struct HostileReply {
    std::string name;
    std::vector<Piece> pieces;
    Fate guarded;
    // Nothing for what is not tried without the guard.
    std::optional<Fate> bare;
    // What may also become of it under the guard, where that depends on how
    // fast the machine is.
    std::optional<Fate> guardedWhenSlow = {};
};

// The tables.
std::vector<HostileReply> entityReplies();
std::vector<HostileReply> encodingReplies();
std::vector<HostileReply> characterReplies();
std::vector<HostileReply> syntaxReplies();
std::vector<HostileReply> floodReplies();
std::vector<HostileReply> nameReplies();

// All of them.
std::vector<HostileReply> hostileReplies();

// What the guard of these tests grants, and how many bytes are many.
extern const std::size_t memoryLimit;
extern const std::size_t many;

// For the tables.

// A reply with this text for its one identifier.
std::string identifier(const std::string& text);

const Fate accepted;  // without an identifier
Fate accepting(const std::vector<std::string>& identifiers);
Fate fatal(int line, int column, const std::string& message);
Fate missing();  // a document that could not be opened
Fate unexpected(const std::string& child);
Fate libraryLimit();
Fate treeLimit();
Fate depthLimit();
Fate timeLimit();
Fate asking(Fate fate, int files, int sockets);

// A reply that fares the same with and without the guard.
HostileReply alike(const std::string& name, const std::string& document,
                   const Fate& fate);

}  // namespace OvMemTest

#endif
