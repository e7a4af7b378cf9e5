#include "tests/hostile/HostileReply.h"

namespace OvMemTest {

namespace {

using namespace std::string_literals;

std::string declared(const std::string& encoding, const std::string& rest) {
    return "<?xml version='1.0' encoding='" + encoding + "'?>" + rest;
}

// Code units of ASCII text, of this many bytes.
std::string wide(const std::string& text, std::size_t bytes, bool bigEndian) {
    std::string units;
    for (const char letter : text) {
        std::string unit(bytes, '\0');
        (bigEndian ? unit.back() : unit.front()) = letter;
        units += unit;
    }
    return units;
}

// "<r><sharedClients>x</sharedClients></r>" in EBCDIC.
const char ebcdicReply[] =
    "\x4C\x99\x6E"
    "\x4C\xA2\x88\x81\x99\x85\x84\xC3\x93\x89\x85\x95\xA3\xA2\x6E\xA7"
    "\x4C\x61\xA2\x88\x81\x99\x85\x84\xC3\x93\x89\x85\x95\xA3\xA2\x6E"
    "\x4C\x61\x99\x6E";

// "<?xml version='1.0' encoding='IBM037'?>" in EBCDIC.
const char ebcdicDeclaration[] =
    "\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95\x7E\x7D\xF1\x4B\xF0"
    "\x7D\x40\x85\x95\x83\x96\x84\x89\x95\x87\x7E\x7D\xC9\xC2\xD4\xF0\xF3\xF7"
    "\x7D\x6F\x6E";

}  // namespace

std::vector<HostileReply> encodingReplies() {
    const std::string reply = identifier("x");
    return {
        // UTF-8 that is none.
        alike(
            "StrayContinuation", identifier("\x80"),
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 1-byte sequence")),
        alike(
            "TwoStrayContinuations", identifier("\xBF\xBF"),
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 1-byte sequence")),
        alike(
            "TwoBytesForSlash", identifier("\xC0\xAF"),
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 1-byte sequence")),
        alike(
            "TwoBytesForNul", identifier("\xC0\x80"),
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 1-byte sequence")),
        alike(
            "TwoBytesForDelete", identifier("\xC1\xBF"),
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 1-byte sequence")),
        alike(
            "ThreeBytesForSlash", identifier("\xE0\x80\xAF"),
            fatal(1, 1,
                  "invalid bytes '\uFFFD' and '\uFFFD' of a 3-byte sequence")),
        alike(
            "ThreeBytesForLess", identifier("\xE0\x80\xBC"),
            fatal(1, 1,
                  "invalid bytes '\uFFFD' and '\uFFFD' of a 3-byte sequence")),
        alike(
            "ThreeBytesForTwo", identifier("\xE0\x9F\xBF"),
            fatal(1, 1,
                  "invalid bytes '\uFFFD' and '\uFFFD' of a 3-byte sequence")),
        alike(
            "FourBytesForSlash", identifier("\xF0\x80\x80\xAF"),
            fatal(1, 1,
                  "invalid bytes '\uFFFD' and '\uFFFD' of a 4-byte sequence")),
        alike(
            "FourBytesForThree", identifier("\xF0\x8F\xBF\xBF"),
            fatal(1, 1,
                  "invalid bytes '\uFFFD' and '\uFFFD' of a 4-byte sequence")),
        alike(
            "HighSurrogate", identifier("\xED\xA0\x80"),
            fatal(
                1, 1,
                "irregular bytes '\uFFFD' and '\uFFFD' of a 3-byte sequence")),
        alike(
            "LowSurrogate", identifier("\xED\xBF\xBF"),
            fatal(
                1, 1,
                "irregular bytes '\uFFFD' and '\uFFFD' of a 3-byte sequence")),
        alike(
            "PairOfSurrogates", identifier("\xED\xA0\xBD\xED\xB8\x80"),
            fatal(
                1, 1,
                "irregular bytes '\uFFFD' and '\uFFFD' of a 3-byte sequence")),
        alike(
            "BeyondTheLastCharacter", identifier("\xF4\x90\x80\x80"),
            fatal(1, 1,
                  "invalid bytes '\uFFFD' and '\uFFFD' of a 4-byte sequence")),
        alike("FarBeyondTheLastCharacter", identifier("\xF7\xBF\xBF\xBF"),
              fatal(1, 1, "invalid multi-byte sequence")),
        alike("FarBeyondTheLastCharacterBehindOthers",
              identifier(std::string(15, 'x') + "pu\xF7\xBF\xBF\xBFmp"),
              accepting({std::string(15, 'x') + "pump"})),
        alike(
            "FiveBytes", identifier("\xF8\x88\x80\x80\x80"),
            fatal(1, 1,
                  "exceeded byte limit at byte '\uFFFD' in a 5-byte sequence")),
        alike(
            "SixBytes", identifier("\xFC\x84\x80\x80\x80\x80"),
            fatal(1, 1,
                  "exceeded byte limit at byte '\uFFFD' in a 6-byte sequence")),
        alike(
            "ByteFE", identifier("\xFE"),
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 6-byte sequence")),
        alike(
            "ByteFF", identifier("\xFF"),
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 6-byte sequence")),
        alike(
            "TwoBytesCutShort", identifier("\xC3"),
            fatal(1, 1, "invalid byte '<' at position 2 of a 2-byte sequence")),
        alike(
            "ThreeBytesCutShort", identifier("\xE2\x82"),
            fatal(1, 1, "invalid byte '<' at position 3 of a 3-byte sequence")),
        alike(
            "FourBytesCutShort", identifier("\xF0\x9F\x98"),
            fatal(1, 1, "invalid byte '<' at position 4 of a 4-byte sequence")),
        alike(
            "CutShortByTheEnd", "<r>\xE2\x82",
            fatal(1, 1, "invalid byte '' at position 3 of a 3-byte sequence")),
        alike(
            "ContinuationMissing", identifier("\xE2\x28\xA1"),
            fatal(1, 1, "invalid byte '(' at position 2 of a 3-byte sequence")),
        alike(
            "InvalidInAName", "<r\xC0\xAF/>",
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 1-byte sequence")),
        alike(
            "InvalidInAnAttribute", "<r a='\xED\xA0\x80'/>",
            fatal(
                1, 1,
                "irregular bytes '\uFFFD' and '\uFFFD' of a 3-byte sequence")),
        alike(
            "InvalidInAComment", "<r><!--\xFF--></r>",
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 6-byte sequence")),
        alike("InvalidInTheDeclaration", "<?xml \xFF?><r/>", missing()),
        alike(
            "Latin1WithoutSayingSo", identifier("caf\xE9"),
            fatal(1, 1, "invalid byte '<' at position 2 of a 3-byte sequence")),
        alike("LastCharacter", identifier("\xF4\x8F\xBF\xBF"),
              accepting({"\xF4\x8F\xBF\xBF"})),

        // Byte order marks.
        alike("Mark", "\xEF\xBB\xBF" + reply, accepting({"x"})),
        alike("TwoMarks", "\xEF\xBB\xBF\xEF\xBB\xBF" + reply,
              fatal(1, 1, "invalid document structure")),
        alike("MarkAlone", "\xEF\xBB\xBF",
              fatal(1, 1, "invalid document structure")),
        alike(
            "HalfAMark", "\xEF\xBB" + reply,
            fatal(1, 1, "invalid byte '<' at position 3 of a 3-byte sequence")),

        // Wide encodings: the first NUL is the end of the document.
        alike("Utf16LittleEndian", "\xFF\xFE" + wide(reply, 2, false),
              fatal(1, 2, "element name expected")),
        alike("Utf16BigEndian", "\xFE\xFF" + wide(reply, 2, true),
              fatal(1, 1, "invalid document structure")),
        alike("Utf16LittleEndianUnmarked", wide(reply, 2, false),
              fatal(1, 2, "element name expected")),
        alike("Utf16BigEndianUnmarked", wide(reply, 2, true),
              fatal(1, 1, "invalid document structure")),
        alike("Utf32LittleEndian", "\xFF\xFE\0\0"s + wide(reply, 4, false),
              fatal(1, 1, "invalid document structure")),
        alike("Utf32BigEndian", "\0\0\xFE\xFF"s + wide(reply, 4, true),
              fatal(1, 1, "invalid document structure")),
        alike("Utf32LittleEndianUnmarked", wide(reply, 4, false),
              fatal(1, 2, "element name expected")),
        alike("Utf32BigEndianUnmarked", wide(reply, 4, true),
              fatal(1, 1, "invalid document structure")),
        alike("Utf16WithoutNul", "\xFF\xFE\x3C\x3C\x3C\x3C",
              fatal(1, 1, "invalid document structure")),
        alike("Utf16OfOddLength", "\xFF\xFE\x3C\x3C\x3C",
              fatal(1, 1, "invalid document structure")),

        // Encodings of many faces.
        alike("Utf7", declared("UTF-7", identifier("+ADw-b/+AD4-")),
              fatal(1, 81, "comment or processing instruction expected")),
        alike("Utf7Marked", "+/v8-+ADw-r/+AD4-",
              fatal(1, 1, "invalid document structure")),
        alike(
            "Ebcdic", ebcdicReply,
            fatal(1, 1,
                  "invalid byte '\uFFFD' at position 1 of a 1-byte sequence")),
        alike("EbcdicDeclared", std::string(ebcdicDeclaration) + ebcdicReply,
              accepting({"x"})),
        alike("EbcdicFalselyDeclared", declared("IBM037", reply),
              fatal(1, 40, "invalid document structure")),
        alike("Utf16FalselyDeclared", declared("UTF-16", reply),
              accepting({"x"})),
        alike("Utf16BigEndianFalselyDeclared", declared("UTF-16BE", reply),
              fatal(1, 42, "invalid document structure")),
        alike("Utf32FalselyDeclared", declared("UTF-32", reply),
              accepting({"x"})),
        alike("AsciiFalselyDeclared", declared("US-ASCII", identifier("\xE9")),
              fatal(1, 42,
                    "char 0xE9 is not representable in 'US-ASCII' encoding")),
        alike("Utf8MarkDeclaredAsLatin1",
              "\xEF\xBB\xBF" + declared("ISO-8859-1", identifier("\xC3\xA9")),
              accepting({"\xC3\x83\xC2\xA9"})),
        alike("Latin1Declared", declared("ISO-8859-1", identifier("\xE9")),
              accepting({"\xC3\xA9"})),
        alike("ShiftJisCutShort", declared("Shift_JIS", identifier("\x83")),
              fatal(1, 62, "invalid character 0x1A")),
        alike("Iso2022Escape",
              declared("ISO-2022-JP", identifier("\x1B$B!!\x1B(B")),
              accepting({"\xE3\x80\x80"})),
        alike("Gb18030BeyondTheLast",
              declared("GB18030", identifier("\xFE\x39\xFE\x39")),
              accepting({"\xEF\xBF\xBD"})),
        alike(
            "UnknownEncoding", declared("no-such-encoding", reply),
            fatal(
                1, 50,
                "unable to create converter for 'NO-SUCH-ENCODING' encoding")),
        alike("EncodingWithAPath", declared("../../../etc/passwd", reply),
              fatal(1, 51,
                    "invalid XML encoding declaration '../../../etc/passwd'")),
        alike("EncodingOfDots", declared("a/../b", reply),
              fatal(1, 38, "invalid XML encoding declaration 'a/../b'")),
        alike(
            "EncodingWithOptions", declared("UTF-8,version=1", reply),
            fatal(1, 47, "invalid XML encoding declaration 'UTF-8,version=1'")),
        alike("EmptyEncoding", declared("", reply),
              fatal(1, 32, "invalid XML encoding declaration ''")),
        alike("EncodingWithALongName",
              declared(std::string(100000, 'x'), reply), missing()),
    };
}

}  // namespace OvMemTest
