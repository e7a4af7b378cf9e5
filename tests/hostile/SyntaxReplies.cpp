#include "tests/hostile/HostileReply.h"

namespace OvMemTest {

std::vector<HostileReply> syntaxReplies() {
    const std::string xmlNamespace = "http://www.w3.org/XML/1998/namespace";
    const std::string xmlnsNamespace = "http://www.w3.org/2000/xmlns/";
    return {
        // Namespaces.
        alike("UnboundPrefix", "<p:r/>",
              fatal(1, 7, "prefix 'p' can not be resolved to namespace URI")),
        alike("UnboundPrefixOfAnAttribute", "<r p:a='x'/>",
              fatal(1, 13, "prefix 'p' can not be resolved to namespace URI")),
        alike("PrefixBoundTooLate", "<r><p:a/><b xmlns:p='urn:p'/></r>",
              fatal(1, 10, "prefix 'p' can not be resolved to namespace URI")),
        alike("PrefixXmlnsDeclared", "<r xmlns:xmlns='urn:x'/>",
              fatal(1, 25,
                    "prefix 'xmlns' cannot be explicitly bound to namespace")),
        alike("PrefixXmlnsUsed", "<xmlns:r/>", accepted),
        alike("PrefixXmlBoundElsewhere", "<r xmlns:xml='urn:x'/>",
              fatal(1, 23,
                    "prefix 'xml' cannot be bound to namespace other than its "
                    "canonical namespace")),
        alike("XmlNamespaceBoundElsewhere",
              "<r xmlns:p='" + xmlNamespace + "'/>",
              fatal(1, 52,
                    "namespace for 'xml' cannot be bound to prefix other than "
                    "'xml'")),
        alike(
            "XmlnsNamespaceByDefault", "<r xmlns='" + xmlnsNamespace + "'/>",
            fatal(
                1, 43,
                "namespace for 'xmlns' cannot be explicitly bound to prefix")),
        alike(
            "XmlnsNamespaceBound", "<r xmlns:p='" + xmlnsNamespace + "'/>",
            fatal(
                1, 45,
                "namespace for 'xmlns' cannot be explicitly bound to prefix")),
        alike("PrefixUnbound", "<r xmlns:p='urn:p'><p:a xmlns:p=''/></r>",
              fatal(1, 37,
                    "invalid namespace value in prefix-namespace mapping "
                    "'xmlns:p'")),
        alike("NamelessPrefix", "<:r xmlns='urn:r'/>",
              fatal(1, 2, "element name expected")),
        alike("NamelessName", "<p: xmlns:p='urn:p'/>",
              fatal(1, 4, "invalid element name 'p:'")),
        alike("TwoColons", "<a:b:c xmlns:a='urn:a'/>",
              fatal(1, 5, "attribute name expected")),
        alike("NamespaceThatIsNoUri", "<r xmlns='%%% ^'/>", accepted),

        // Attributes.
        alike(
            "AttributeTwice", "<r a='1' a='2'/>",
            fatal(1, 17, "attribute 'a' is already specified for element 'r'")),
        alike(
            "AttributeTwiceByNamespace",
            "<r xmlns:p='urn:x' xmlns:q='urn:x' p:a='1' q:a='2'/>",
            fatal(1, 53, "attribute 'a' is already specified for element 'r'")),
        alike(
            "DeclarationTwice", "<r xmlns:p='urn:x' xmlns:p='urn:y'/>",
            fatal(1, 37,
                  "attribute 'xmlns:p' is already specified for element 'r'")),
        alike("AttributeWithoutAValue", "<r a/>",
              fatal(1, 5, "equal sign expected")),
        alike("AttributeWithoutQuotes", "<r a=1/>",
              fatal(1, 6, "attribute value expected")),
        alike("AttributeWithTwoQuotes", "<r a='1\"/>",
              fatal(1, 12, "unexpected end of input")),
        alike("AttributesWithoutASpace", "<r a='1'b='2'/>",
              fatal(1, 9, "whitespace expected")),
        alike("TagInAnAttribute", "<r a='<b>'/>",
              fatal(1, 13,
                    "'<' character cannot be used in attribute value 'a'; use "
                    "&lt; instead")),
        alike("AttributeOfAnEndTag", "<r></r a='1'>",
              fatal(1, 8, "unterminated end tag 'r'")),

        // Names.
        alike("NameOfADigit", "<1/>", fatal(1, 2, "element name expected")),
        alike("NameOfADash", "<-/>", fatal(1, 2, "element name expected")),
        alike("NameOfNothing", "< />", fatal(1, 2, "element name expected")),
        alike("NameWithASlash", "<r/../s/>",
              fatal(1, 4, "unterminated start tag 'r'")),
        alike("NameWithABracket", "<r[0]/>",
              fatal(1, 3, "attribute name expected")),
        alike("OtherCaseInTheEndTag", "<r></R>",
              fatal(1, 6, "expected end of tag 'r'")),

        // Structure.
        alike("NoRoot", "<!-- nothing -->",
              fatal(1, 17, "invalid document structure")),
        alike("TextAlone", "OvMEM register client",
              fatal(1, 1, "invalid document structure")),
        alike("TwoRoots", "<r/><r/>",
              fatal(1, 5, "comment or processing instruction expected")),
        alike("TextBehindTheRoot", "<r/>text",
              fatal(1, 5, "comment or processing instruction expected")),
        alike("CDataBehindTheRoot", "<r/><![CDATA[x]]>",
              fatal(1, 5, "comment or processing instruction expected")),
        alike("MismatchedTags", "<r><sharedClients></r></sharedClients>",
              fatal(1, 21, "expected end of tag 'sharedClients'")),
        alike("EndTagAlone", "</r>", fatal(1, 3, "unmatched end tag detected")),
        alike("EndOfATagMissing", "<r", fatal(1, 3, "unexpected end of input")),
        alike("EndOfARootMissing", "<r><sharedClients>x</sharedClients>",
              fatal(1, 36,
                    "input ended before all started tags were ended; last tag "
                    "started is 'r'")),
        alike("EndOfACommentMissing", "<r><!-- ",
              fatal(1, 10, "unterminated comment")),
        alike("EndOfCDataMissing", "<r><![CDATA[",
              fatal(1, 14, "unterminated CDATA section")),
        alike("EndOfAnInstructionMissing", "<r><?p ",
              fatal(1, 9, "unterminated processing instruction")),
        alike("EndOfAnAttributeMissing", "<r a='",
              fatal(1, 8, "unexpected end of input")),
        alike("DashesInAComment", "<r><!-- -- --></r>",
              fatal(1, 12, "'--' sequence is illegal in comment")),
        alike("EndOfCDataInText", identifier("]]>"),
              fatal(1, 22, "']]>' sequence is not allowed in character data")),
        alike("CDataInCData", identifier("<![CDATA[<![CDATA[x]]>]]>"),
              fatal(1, 44, "']]>' sequence is not allowed in character data")),
        alike("TagInCData", identifier("<![CDATA[</sharedClients>]]>"),
              accepting({"</sharedClients>"})),
        alike("UnexpectedChild", "<r><other/></r>", unexpected("other")),
        alike("ChildOfAnIdentifier", identifier("<r/>"), accepting({""})),

        // Declarations and instructions.
        alike("DeclarationBehindASpace", " <?xml version='1.0'?><r/>",
              fatal(1, 8,
                    "XML or TEXT declaration must start at line 1, column 1")),
        alike("DeclarationInTheMiddle", "<r><?xml version='1.0'?></r>",
              fatal(1, 9, "processing instruction cannot start with 'xml'")),
        alike("DeclarationTwiceOver",
              "<?xml version='1.0'?><?xml version='1.0'?><r/>",
              fatal(1, 28,
                    "XML or TEXT declaration must start at line 1, column 1")),
        alike(
            "DeclarationWithoutAVersion", "<?xml encoding='UTF-8'?><r/>",
            fatal(1, 23, "version declaration is required in XML declaration")),
        alike("DeclarationOutOfOrder",
              "<?xml encoding='UTF-8' version='1.0'?><r/>",
              fatal(1, 37,
                    "XML declarations must be in this order: version, "
                    "encoding, standalone")),
        alike("StandalonePerhaps",
              "<?xml version='1.0' standalone='maybe'?><r/>",
              fatal(1, 39, "invalid standalone declaration")),
        alike("InstructionNamedXml", "<r><?XML x?></r>",
              fatal(1, 9, "processing instruction cannot start with 'xml'")),
        alike("InstructionWithoutAName", "<r><? x?></r>",
              fatal(1, 6, "processing instruction name expected")),
        alike("InstructionForAnInterpreter", "<?php exit(); ?><r/>", accepted),
    };
}

}  // namespace OvMemTest
