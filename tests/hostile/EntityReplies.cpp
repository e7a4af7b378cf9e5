#include "tests/hostile/HostileReply.h"

namespace OvMemTest {

namespace {

// A reply whose one identifier is the entity e, declared so.
std::string declaring(const std::string& declarations) {
    return "<!DOCTYPE r [" + declarations + "]>" + identifier("&e;");
}

// Each entity is ten times the one before it, the last one 10^levels laughs.
std::string laughs(int levels) {
    std::string declarations = "<!ENTITY l0 'lol'>";
    for (int level = 1; level <= levels; ++level) {
        const std::string before = "&l" + std::to_string(level - 1) + ";";
        declarations += "<!ENTITY l" + std::to_string(level) + " '";
        for (int time = 0; time < 10; ++time) {
            declarations += before;
        }
        declarations += "'>";
    }
    return declaring(declarations + "<!ENTITY e '&l" + std::to_string(levels) +
                     ";'>");
}

// What that amounts to.
std::string laughter(int levels) {
    std::string all = "lol";
    for (int level = 0; level < levels; ++level) {
        const std::string before = all;
        for (int time = 1; time < 10; ++time) {
            all += before;
        }
    }
    return all;
}

// The guard refuses every document type, wherever it leads.
HostileReply dtd(const std::string& name, const std::string& document,
                 const std::optional<Fate>& bare) {
    return {
        name, {{document}}, fatal(1, 10, "invalid document structure"), bare};
}

// A document type that names a file or a URL.
HostileReply external(const std::string& name, const std::string& declarations,
                      const Fate& bare) {
    return dtd(name, declaring(declarations), bare);
}

// An element with a hint where to find its schema.
std::string hinted(const std::string& attribute, const std::string& value) {
    return "<r xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:" +
           attribute + "='" + value + "'><sharedClients>x</sharedClients></r>";
}

}  // namespace

std::vector<HostileReply> entityReplies() {
    return {
        // Expansion.
        dtd("BillionLaughs", laughs(9), {}),
        dtd("HundredThousandLaughs", laughs(5), accepting({laughter(5)})),
        dtd("ThousandLaughs", laughs(3), accepting({laughter(3)})),
        {"QuadraticBlowup",
         {{"<!DOCTYPE r [<!ENTITY e '"},
          {"x", many / 1000},
          {"'>]><r><sharedClients>"},
          {"&e;", many / 1000},
          {"</sharedClients></r>"}},
         fatal(1, 10, "invalid document structure"),
         {}},
        {"SmallQuadraticBlowup",
         {{"<!DOCTYPE r [<!ENTITY e '"},
          {"x", 1000},
          {"'>]><r><sharedClients>"},
          {"&e;", 1000},
          {"</sharedClients></r>"}},
         fatal(1, 10, "invalid document structure"),
         accepting({std::string(1000000, 'x')})},
        dtd("EntityOfItself", declaring("<!ENTITY e '&f;'><!ENTITY f '&e;'>"),
            fatal(1, 71, "recursive entity expansion 'e'")),
        dtd("ParameterEntityInMarkup",
            declaring("<!ENTITY % a '%b;'><!ENTITY % b '%a;'> %a;"),
            fatal(1, 29,
                  "parameter entity references are not allowed inside markup "
                  "in internal subset")),
        dtd("ExpansionInAnAttribute",
            "<!DOCTYPE r [<!ENTITY e 'x'>]><r a='&e;&e;&e;'/>", accepted),
        dtd("PredefinedEntityDeclaredAnew",
            "<!DOCTYPE r [<!ENTITY lt 'x'>]>" + identifier("&lt;"),
            accepting({"<"})),

        // External entities.
        external(
            "FileEntity", "<!ENTITY e SYSTEM 'file:///etc/passwd'>",
            asking(fatal(1, 76,
                         "unable to open external entity 'file:///etc/passwd'"),
                   1, 0)),
        external("FifoEntity", "<!ENTITY e SYSTEM 'fifo'>",
                 asking(fatal(1, 62, "unable to open external entity 'fifo'"),
                        1, 0)),
        external(
            "DeviceEntity", "<!ENTITY e SYSTEM 'file:///dev/zero'>",
            asking(fatal(1, 74,
                         "unable to open external entity 'file:///dev/zero'"),
                   1, 0)),
        external("HostFileEntity",
                 "<!ENTITY e SYSTEM 'file://localhost/etc/passwd'>",
                 asking(fatal(1, 85,
                              "unable to open external entity "
                              "'file://localhost/etc/passwd'"),
                        1, 0)),
        external(
            "RelativeEntity", "<!ENTITY e SYSTEM 'secrets.txt'>",
            asking(fatal(1, 69, "unable to open external entity 'secrets.txt'"),
                   1, 0)),
        external(
            "HttpEntity", "<!ENTITY e SYSTEM 'http://127.0.0.1:9/e'>",
            asking(
                fatal(
                    1, 78,
                    "unable to connect socket for URL 'http://127.0.0.1:9/e'"),
                0, 1)),
        external(
            "HttpsEntity", "<!ENTITY e SYSTEM 'https://127.0.0.1:9/e'>",
            asking(
                fatal(
                    1, 79,
                    "unable to connect socket for URL 'https://127.0.0.1:9/e'"),
                0, 1)),
        external(
            "FtpEntity", "<!ENTITY e SYSTEM 'ftp://127.0.0.1:9/e'>",
            asking(
                fatal(1, 77,
                      "unable to connect socket for URL 'ftp://127.0.0.1:9/e'"),
                0, 1)),
        external(
            "GopherEntity", "<!ENTITY e SYSTEM 'gopher://127.0.0.1:9/e'>",
            asking(
                fatal(
                    1, 80,
                    "unable to open external entity 'gopher://127.0.0.1:9/e'"),
                1, 0)),
        external(
            "PublicEntity",
            "<!ENTITY e PUBLIC '-//plant//e' 'http://127.0.0.1:9/e'>",
            asking(
                fatal(
                    1, 92,
                    "unable to connect socket for URL 'http://127.0.0.1:9/e'"),
                0, 1)),
        external("UnusedEntity",
                 "<!ENTITY e 'x'><!ENTITY f SYSTEM 'file:///etc/passwd'>",
                 accepting({"x"})),
        external(
            "UnparsedEntity",
            "<!NOTATION n SYSTEM 'file:///etc/passwd'><!ENTITY e SYSTEM "
            "'file:///etc/passwd' NDATA n>",
            fatal(1, 125,
                  "unparsed entity reference 'e' is invalid at this point")),
        external(
            "FileParameterEntity",
            "<!ENTITY e 'x'><!ENTITY % p SYSTEM 'file:///etc/passwd'> %p;",
            asking(fatal(1, 74,
                         "unable to open external entity 'file:///etc/passwd'"),
                   1, 0)),
        external("FifoParameterEntity",
                 "<!ENTITY e 'x'><!ENTITY % p SYSTEM 'fifo'> %p;",
                 asking(fatal(1, 60, "unable to open external entity 'fifo'"),
                        1, 0)),
        external(
            "HttpParameterEntity",
            "<!ENTITY e 'x'><!ENTITY % p SYSTEM 'http://127.0.0.1:9/p'> "
            "%p;",
            asking(
                fatal(
                    1, 76,
                    "unable to connect socket for URL 'http://127.0.0.1:9/p'"),
                0, 1)),
        external(
            "FileSentOut",
            "<!ENTITY % f SYSTEM 'file:///etc/passwd'><!ENTITY % p "
            "SYSTEM 'http://127.0.0.1:9/p'> %p; %out;",
            asking(
                fatal(
                    1, 102,
                    "unable to connect socket for URL 'http://127.0.0.1:9/p'"),
                0, 1)),

        // External document types.
        dtd("FileDtd", "<!DOCTYPE r SYSTEM 'file:///etc/passwd'><r/>",
            asking(fatal(1, 41,
                         "unable to open DTD document 'file:///etc/passwd'"),
                   1, 0)),
        dtd("FifoDtd", "<!DOCTYPE r SYSTEM 'fifo'><r/>",
            asking(fatal(1, 27, "unable to open DTD document 'fifo'"), 1, 0)),
        dtd("HttpDtd", "<!DOCTYPE r SYSTEM 'http://127.0.0.1:9/r.dtd'><r/>",
            asking(fatal(1, 47,
                         "unable to connect socket for URL "
                         "'http://127.0.0.1:9/r.dtd'"),
                   0, 1)),
        dtd("PublicDtd",
            "<!DOCTYPE r PUBLIC '-//plant//r' 'http://127.0.0.1:9/r'><r/>",
            asking(
                fatal(
                    1, 57,
                    "unable to connect socket for URL 'http://127.0.0.1:9/r'"),
                0, 1)),
        dtd("RelativeDtd", "<!DOCTYPE r SYSTEM '../r.dtd'><r/>",
            asking(fatal(1, 31, "unable to open DTD document '../r.dtd'"), 1,
                   0)),
        dtd("NamelessDtd", "<!DOCTYPE r SYSTEM ''><r/>",
            asking(fatal(1, 23, "unable to open DTD document ''"), 1, 0)),
        dtd("DtdOfNothing", "<!DOCTYPE r><r/>", accepted),
        dtd("DtdThatRefusesTheReply",
            "<!DOCTYPE r [<!ELEMENT r EMPTY>]>" + identifier("x"),
            accepting({"x"})),
        dtd("DtdWithDefaultAttributes",
            "<!DOCTYPE r [<!ATTLIST r a CDATA 'x'>]><r/>", accepted),
        alike("DtdBehindTheRoot", "<r/><!DOCTYPE r>",
              fatal(1, 5, "comment or processing instruction expected")),
        alike("LowerCaseDoctype", "<!doctype r><r/>",
              fatal(1, 2, "expected comment or CDATA section")),

        // Schemas and other hints.
        {"FileSchema",
         {{hinted("noNamespaceSchemaLocation", "file:///etc/passwd")}},
         accepting({"x"}),
         asking(accepting({"x"}), 1, 0)},
        {"FifoSchema",
         {{hinted("noNamespaceSchemaLocation", "fifo")}},
         accepting({"x"}),
         asking(accepting({"x"}), 1, 0)},
        {"HttpSchema",
         {{hinted("noNamespaceSchemaLocation", "http://127.0.0.1:9/r.xsd")}},
         missing(),
         asking(missing(), 0, 1)},
        {"RelativeSchema",
         {{hinted("noNamespaceSchemaLocation", "../r.xsd")}},
         accepting({"x"}),
         asking(accepting({"x"}), 1, 0)},
        {"SchemasByNamespace",
         {{hinted("schemaLocation", "urn:a file:///etc/passwd urn:b fifo")}},
         accepting({"x"}),
         asking(accepting({"x"}), 2, 0)},
        {"SchemaOfItself",
         {{hinted("noNamespaceSchemaLocation", "From-String")}},
         accepting({"x"}),
         asking(accepting({"x"}), 1, 0)},
        alike(
            "HalfASchemaLocation", hinted("schemaLocation", "urn:a"),
            fatal(1, 85,
                  "schemaLocation does not contain namespace-location pairs")),
        alike("UnknownSchemaType", hinted("type", "xsi:no-such-type"),
              accepting({"x"})),
        alike("Inclusion",
              "<r><i:include xmlns:i='http://www.w3.org/2001/XInclude' "
              "href='file:///etc/passwd'/></r>",
              unexpected("include")),
        alike("Stylesheet",
              "<?xml-stylesheet href='file:///etc/passwd'?>" + identifier("x"),
              accepting({"x"})),
        alike("BaseElsewhere", "<r xml:base='file:///etc/'/>", accepted),
    };
}

}  // namespace OvMemTest
