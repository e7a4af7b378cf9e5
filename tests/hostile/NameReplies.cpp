#include <string>

#include "tests/hostile/HostileReply.h"

namespace OvMemTest {

namespace {

// With less memory there is less room for what takes long.
const bool roomForAll = memoryLimit > 4000000;

// Names that are all the same to the XML library's hash, in place of the "#"
// of a text: of "ax" and "bR", which are the same to it, 15 in a row.
std::string colliding(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t number = 0; number < count; ++number) {
        std::string name;
        for (int bit = 0; bit < 15; ++bit) {
            name += (number >> bit & 1) != 0 ? "ax" : "bR";
        }
        const auto at = text.find('#');
        all.append(text, 0, at).append(name).append(text, at + 1);
    }
    return all;
}

// What takes too long, where there is room for it.
HostileReply slow(const std::string& name, const std::vector<Piece>& pieces,
                  const Fate& otherwise) {
    return {name, pieces, roomForAll ? timeLimit() : otherwise, {}};
}

// Declarations of 950 prefixes, the same for each call.
std::string declarations() {
    std::string all;
    for (int number = 0; number < 950; ++number) {
        all += " xmlns:p" + std::to_string(number) + "='u'";
    }
    return all;
}

const std::string schemaHints =
    "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'";

}  // namespace

std::vector<HostileReply> nameReplies() {
    const std::size_t names = many / 4000;
    const std::size_t hinting = roomForAll ? many / 5000 : 100;
    return {
        // Each name is compared with all those before it.
        slow("CollidingElementNames",
             {{"<r>"}, {colliding("<#/>", names)}, {"</r>"}},
             unexpected("bRbRbRbRbRbRbRbRbRbRbRbRbRbRbR")),
        slow("CollidingAttributeNames",
             {{"<r "}, {colliding("#='' ", names)}, {"/>"}}, accepted),
        slow("CollidingPrefixes",
             {{"<r "}, {colliding("xmlns:#='u' ", names)}, {"/>"}},
             libraryLimit()),
        slow("CollidingNamespaces",
             {{"<r>"}, {colliding("<a xmlns='#'/>", names)}, {"</r>"}},
             unexpected("a")),
        slow("CollidingNameAgainAndAgain",
             {{"<r>"},
              {colliding("<#/>", names / 2)},
              {"<bRbRbRbRbRbRbRbRbRbRbRbRbRbRbR/>", names / 2},
              {"</r>"}},
             unexpected("bRbRbRbRbRbRbRbRbRbRbRbRbRbRbR")),

        // Every element is looked up among all declarations in scope.
        {"NamespacesTimesLevelsTimesElements",
         {{"<r" + declarations() + ">"},
          {"<a" + declarations() + ">", 989},
          {"<b/>", 62000},
          {"</a>", 989},
          {"</r>"}},
         treeLimit(),
         {}},
        {"NamespacesTimesManyElements",
         {{"<r" + declarations() + "><sharedClients>"},
          {"<b/>", many / 1700},
          {"</sharedClients></r>"}},
         treeLimit(),
         accepting({""})},
        {"NamespacesDeclaredByEveryElement",
         {{"<r>"},
          {"<sharedClients xmlns:p='u' xmlns:q='u'/>", many / 2000},
          {"</r>"}},
         treeLimit(),
         accepting(std::vector<std::string>(many / 2000))},

        // Each hint is an attempt to open a document, which is refused.
        slow("ManySchemaHints",
             {{"<r " + schemaHints + " xsi:schemaLocation='"},
              {"a b ", roomForAll ? many / 1000 : 100},
              {"'/>"}},
             accepted),
        // As many as there is room for take about as long as they may.
        {"SchemaHintsOfManyElements",
         {{"<r " + schemaHints + ">"},
          {"<sharedClients xsi:noNamespaceSchemaLocation='b'/>", hinting},
          {"</r>"}},
         accepting(std::vector<std::string>(hinting)),
         {},
         timeLimit()},
    };
}

}  // namespace OvMemTest
