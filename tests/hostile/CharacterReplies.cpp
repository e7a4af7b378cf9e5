#include "tests/hostile/HostileReply.h"

namespace OvMemTest {

namespace {

using namespace std::string_literals;

std::string version(const std::string& number, const std::string& rest) {
    return "<?xml version='" + number + "'?>" + rest;
}

}  // namespace

std::vector<HostileReply> characterReplies() {
    return {
        // NUL ends a document.
        alike("Empty", "", fatal(1, 1, "invalid document structure")),
        alike("NulFirst", "\0<r/>"s, fatal(1, 1, "invalid document structure")),
        alike("NulInText", identifier("a\0b"s),
              fatal(1, 21, "invalid character 0x0")),
        alike("NulInATag", "<r\0/>"s, fatal(1, 3, "unexpected end of input")),
        alike("NulInAComment", "<r><!--\0--></r>"s,
              fatal(1, 9, "unterminated comment")),
        alike("NulBehindTheRoot", "<r/>\0<!DOCTYPE r><s>"s, accepted),
        alike("ReferenceToNul", identifier("&#0;"),
              fatal(1, 23, "invalid character reference")),

        // Control characters, raw and by reference.
        alike("Control1", identifier("\x01"),
              fatal(1, 20, "invalid character 0x1")),
        alike("Control1F", identifier("\x1F"),
              fatal(1, 20, "invalid character 0x1F")),
        alike("Escape", identifier("\x1B[2J"),
              fatal(1, 20, "invalid character 0x1B")),
        alike("ControlInAnAttribute", "<r a='\x02'/>",
              fatal(1, 8, "invalid character 0x2 in attribute value 'a'")),
        alike("Substitute", identifier("\x1A"),
              fatal(1, 20, "invalid character 0x1A")),
        alike("Delete", identifier("\x7F"), accepting({"\x7F"})),
        alike("ReferenceToControl1", identifier("&#1;"),
              fatal(1, 23, "invalid character reference")),
        alike("Version11Control1", version("1.1", identifier("\x01")),
              fatal(1, 41, "invalid character 0x1")),
        alike("Version11ReferenceToControl1",
              version("1.1", identifier("&#1;")), accepting({"\x01"})),
        alike("Version11ReferenceToNul", version("1.1", identifier("&#0;")),
              fatal(1, 44, "invalid character reference")),
        alike("Version11Control80", version("1.1", identifier("\xC2\x80")),
              fatal(1, 41, "invalid character 0x80")),
        alike("Version11NextLine", version("1.1", identifier("a\xC2\x85z")),
              accepting({"a\nz"})),
        alike("Version11LineSeparator",
              version("1.1", identifier("a\xE2\x80\xA8z")),
              accepting({"a\nz"})),
        alike("Version12", version("1.2", "<r/>"), accepted),
        alike("Version20", version("2.0", "<r/>"),
              fatal(1, 20, "unsupported XML version '2.0'")),
        alike("VersionOfManyDigits",
              version("1." + std::string(10000, '0'), "<r/>"), accepted),

        // What is no character.
        alike("NoncharacterFFFE", identifier("\xEF\xBF\xBE"),
              fatal(1, 20, "invalid character 0xFFFE")),
        alike("NoncharacterFFFF", identifier("\xEF\xBF\xBF"),
              fatal(1, 20, "invalid character 0xFFFF")),
        alike("Noncharacter1FFFF", identifier("\xF0\x9F\xBF\xBF"),
              accepting({"\xF0\x9F\xBF\xBF"})),
        alike("ReferenceToASurrogate", identifier("&#xD800;"),
              fatal(1, 27, "invalid character reference")),
        alike("ReferenceBeyondTheLast", identifier("&#x110000;"),
              fatal(1, 27, "invalid character reference")),
        alike("ReferenceThatOverflows", identifier("&#x100000041;"),
              fatal(1, 28, "invalid character reference")),
        alike("ReferenceThatOverflowsTwice",
              identifier("&#x10000000000000041;"),
              fatal(1, 28, "invalid character reference")),
        alike("ReferenceToFFFE", identifier("&#xFFFE;"),
              fatal(1, 27, "invalid character reference")),
        alike("ReferenceOfNoDigits", identifier("&#;"),
              fatal(1, 22, "invalid character reference")),
        alike("HexReferenceOfNoDigits", identifier("&#x;"),
              fatal(1, 23, "invalid character reference")),
        alike("ReferenceWithoutAnEnd", identifier("&#65"),
              fatal(1, 23, "unterminated character reference")),
        alike("NegativeReference", identifier("&#-1;"),
              fatal(1, 21,
                    "expected &# to be followed by a numeric character value")),
        alike("UndeclaredEntity", identifier("&e;"),
              fatal(1, 22, "entity 'e' not found")),
        alike("BareAmpersand", identifier("a & b"),
              fatal(1, 22, "expected entity name for reference")),

        // Writing that changes direction or has no width is text like other.
        alike("Overrides", identifier("\xE2\x80\xAEp\xE2\x80\x8Bump"),
              accepting({"\xE2\x80\xAEp\xE2\x80\x8Bump"})),
        alike("CombiningMarks", identifier("\xCC\x81\xCC\x81\xCC\x81"),
              accepting({"\xCC\x81\xCC\x81\xCC\x81"})),
    };
}

}  // namespace OvMemTest
