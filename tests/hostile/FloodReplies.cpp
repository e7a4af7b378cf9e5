#include "tests/hostile/HostileReply.h"

namespace OvMemTest {

namespace {

// Something long between a beginning and an end.
HostileReply flood(const std::string& name, const std::string& beginning,
                   const Piece& middle, const std::string& end,
                   const Fate& guarded, const std::optional<Fate>& bare) {
    return {name, {{beginning}, middle, {end}}, guarded, bare};
}

// Long and harmless. The XML library takes at least half of the processor time
// that the guard grants, so a slower machine refuses it.
HostileReply lengthy(const std::string& name, const std::string& beginning,
                     const Piece& middle, const std::string& end) {
    return {
        name, {{beginning}, middle, {end}}, accepted, accepted, timeLimit()};
}

// Numbers in place of the "#" of a text, from 0.
std::string numbered(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t number = 0; number < count; ++number) {
        const std::string digits = std::to_string(number);
        std::size_t from = 0;
        for (auto at = text.find('#'); at != std::string::npos;
             at = text.find('#', from)) {
            all.append(text, from, at - from).append(digits);
            from = at + 1;
        }
        all.append(text, from);
    }
    return all;
}

// Elements within each other, the outer two those of a genuine reply.
HostileReply nested(const std::string& name, std::size_t depth,
                    const Fate& guarded, const std::optional<Fate>& bare) {
    return {name,
            {{"<r><sharedClients>"},
             {"<a>", depth - 2},
             {"</a>", depth - 2},
             {"</sharedClients></r>"}},
            guarded,
            bare};
}

}  // namespace

std::vector<HostileReply> floodReplies() {
    return {
        // Depth.
        nested("NestedAThousand", 1000, accepting({""}), accepting({""})),
        nested("NestedAThousandAndOne", 1001, depthLimit(), accepting({""})),
        nested("NestedFiveThousand", 5000, depthLimit(), accepting({""})),
        nested("NestedAMillion", 1000000, depthLimit(), {}),
        flood("OpenedAMillionTimes", "", {"<a>", 1000000}, "", depthLimit(),
              {}),

        // Length.
        // The XML library hands text on in pieces of about a megabyte.
        flood("LongText", "<r><sharedClients>", {"x", many},
              "</sharedClients></r>",
              memoryLimit < 4000000 ? libraryLimit() : treeLimit(), {}),
        flood("LongElementName", "<", {"x", many}, "/>", libraryLimit(), {}),
        flood("LongPrefix", "<", {"x", many}, ":r/>", libraryLimit(), {}),
        flood("LongAttributeName", "<r ", {"x", many}, "=''/>", libraryLimit(),
              {}),
        flood("LongAttributeValue", "<r a='", {"x", many}, "'/>",
              libraryLimit(), {}),
        flood("LongNamespace", "<r xmlns='", {"x", many}, "'/>", libraryLimit(),
              {}),
        flood("LongComment", "<r><!--", {"x", many}, "--></r>", libraryLimit(),
              {}),
        flood("LongInstruction", "<r><?p ", {"x", many}, "?></r>",
              libraryLimit(), {}),
        flood("LongCData", "<r><sharedClients><![CDATA[", {"x", many},
              "]]></sharedClients></r>", libraryLimit(), {}),
        flood("LongBlankBeforeTheRoot", "", {" ", many}, "<r/>", libraryLimit(),
              {}),
        flood("LongBlankInATag", "<r", {" ", many / 2}, "/>", accepted,
              accepted),
        lengthy("LongerBlankInATag", "<r", {" ", many}, "/>"),
        flood("LongBlankBehindTheRoot", "<r/>", {" ", many}, "", libraryLimit(),
              {}),
        flood("LongEntityName", "<r>&", {"x", many}, ";</r>", libraryLimit(),
              {}),
        flood("LongReference", "<r>&#", {"0", many / 4}, "65;</r>", accepted,
              accepted),
        flood("LongDeclaration", "<?xml version='1.0'", {" ", many}, "?><r/>",
              missing(), {}),
        flood("LongTextThatIsNoUtf8", "<r>", {"\xFF", many}, "</r>",
              fatal(1, 1,
                    "invalid byte '\uFFFD' at position 1 of a 6-byte sequence"),
              {}),

        // Number.
        flood("ManyElements", "<r>", {"<sharedClients/>", many / 16}, "</r>",
              treeLimit(), {}),
        flood("ManyAttributedElements", "<r>",
              {"<sharedClients a='' b='' c=''/>", many / 31}, "</r>",
              treeLimit(), {}),
        flood("ManyReferences", "<r><sharedClients>", {"&#65;", many / 5},
              "</sharedClients></r>", treeLimit(), {}),
        flood("ManyEntities", "<r><sharedClients>", {"&lt;", many / 4},
              "</sharedClients></r>", treeLimit(), {}),
        flood("ManyCDataSections", "<r><sharedClients>",
              {"<![CDATA[x]]>", many / 13}, "</sharedClients></r>", treeLimit(),
              {}),
        flood("ManyInstructions", "<r>", {"<?p?>", many / 80}, "</r>", accepted,
              accepted),
        flood("ManyComments", "<r>", {"<!---->", many / 80}, "</r>", accepted,
              accepted),
        lengthy("MoreInstructions", "<r>", {"<?p?>", many / 40}, "</r>"),
        lengthy("MoreComments", "<r>", {"<!---->", many / 40}, "</r>"),
        flood("ManyIdentifiers", "<r>",
              {"<sharedClients>x</sharedClients>", many / 10000}, "</r>",
              accepting(std::vector<std::string>(many / 10000, "x")),
              accepting(std::vector<std::string>(many / 10000, "x"))),
        flood("ManyLines", "<r>", {"\n", many / 100}, "</s>",
              fatal(static_cast<int>(many / 100) + 1, 3,
                    "expected end of tag 'r'"),
              fatal(static_cast<int>(many / 100) + 1, 3,
                    "expected end of tag 'r'")),

        flood("ManyWarnings", "<!DOCTYPE r [<!ATTLIST r",
              {" k CDATA ''", many / 250}, ">]><r/>",
              fatal(1, 10, "invalid document structure"), accepted),

        // Number of different things.
        flood("AsManyAttributesAsFit", "<r ",
              {numbered("a#='' ", many / 10000)}, "/>", accepted, accepted),
        flood("TooManyAttributes", "<r ", {numbered("a#='' ", many / 1000)},
              "/>", libraryLimit(), accepted),
        flood("SameAttributeAgainAndAgain", "<r ", {"a='' ", many / 1000}, "/>",
              fatal(1, static_cast<int>(many / 200) + 6,
                    "attribute 'a' is already specified for element 'r'"),
              fatal(1, static_cast<int>(many / 200) + 6,
                    "attribute 'a' is already specified for element 'r'")),
        flood("AsManyNamespacesAsFit", "<r ",
              {numbered("xmlns:p#='urn:#' ", many / 10000)}, "/>", accepted,
              accepted),
        flood("TooManyNamespaces", "<r ",
              {numbered("xmlns:p#='urn:#' ", many / 1000)}, "/>",
              libraryLimit(), accepted),
        flood("TooManyNames", "<r>", {numbered("<a#/>", many / 1000)}, "</r>",
              libraryLimit(), {}),
        {"NamespacesTimesElements",
         {{"<r "},
          {numbered("xmlns:p#='u' ", many / 10000)},
          {">"},
          {"<p" + std::to_string(many / 10000 - 1) + ":a/>", many / 10000},
          {"</r>"}},
         unexpected("a"),
         unexpected("a")},
        {"NamespacesTimesAttributes",
         {{"<r "},
          {numbered("xmlns:p#='u' ", many / 5000)},
          {">"},
          {"<a " +
               numbered("p" + std::to_string(many / 5000 - 1) + ":a#='' ", 8) +
               "/>",
           many / 5000},
          {"</r>"}},
         treeLimit(),
         {}},
        {"NamespacesWithinEachOther",
         {{numbered("<a xmlns:p#='urn:#'>", 900)}, {"</a>", 900}},
         unexpected("a"),
         unexpected("a")},
    };
}

}  // namespace OvMemTest
