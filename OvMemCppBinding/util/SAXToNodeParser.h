#ifndef OVMEMCPPBINDING_UTIL_SAXTONODEPARSER_H
#define OVMEMCPPBINDING_UTIL_SAXTONODEPARSER_H

#include <memory>
#include <string>

#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>

#include "OvMemCppBinding/util/GuardedParse.h"
#include "OvMemCppBinding/util/TreeBudget.h"
#include "OvMemCppBinding/util/XMLNode.h"

namespace Orvane::Net::OvModelEventManager::Util {

// Parses an XML document into a tree of XMLNode.
//
// Each parser serves one parse. The reader works with the defaults of the XML
// library, so a parser trusts its document. On a platform that an
// XmlPlatformGuard started the reader has a memory manager of its own, and
// until the guard ends it is watched by two more handlers.
//
// Ownership: the tree belongs to the parser, until its destruction or its next
// parse.
//
// Threads: one at a time; several parsers may work on several threads.
//
// THROWS: DomException for a document that is not well-formed, for one beyond
// the limits of an XmlPlatformGuard, and when the XML parser platform is not
// initialised; the XML library's own exceptions pass unchanged. After a failure
// the parser is not used again.
class SAXToNodeParser : public xercesc::DefaultHandler {
public:
    SAXToNodeParser();
    ~SAXToNodeParser() override;
    SAXToNodeParser(const SAXToNodeParser&) = delete;
    SAXToNodeParser& operator=(const SAXToNodeParser&) = delete;

    // Parsing. Both return the root, or null if there is none.

    // A document held in memory, up to its first NUL. The text is parsed in
    // place.
    //
    // REQUIRES: `xml` stays unchanged during the call.
    XMLNode* parseString(const std::string& xml);

    // A document that the XML library opens by file name or URL.
    XMLNode* parseFile(const std::string& fileName);

    // The root of the latest parse. Without one, an empty node that from then
    // on is the root.
    XMLNode* getRootNode();

    // For the whole process: replace each byte 0x1A, by which a code page
    // stands for what it cannot express, by "?" in element text and attribute
    // values. Off at first.
    static void setReplaceSubCharacters(bool on);

    // Callbacks of the reader. What they throw passes through the XML library,
    // which is written for it.

    void characters(const XMLCh* chars, XMLSize_t length) override;
    void endDocument() override;
    void endElement(const XMLCh* uri, const XMLCh* localname,
                    const XMLCh* qname) override;
    void ignorableWhitespace(const XMLCh* chars, XMLSize_t length) override;
    void processingInstruction(const XMLCh* target, const XMLCh* data) override;
    void startDocument() override;
    void startElement(const XMLCh* uri, const XMLCh* localname,
                      const XMLCh* qname,
                      const xercesc::Attributes& attrs) override;

    void warning(const xercesc::SAXParseException& exception) override;
    void error(const xercesc::SAXParseException& exception) override;
    void fatalError(const xercesc::SAXParseException& exception) override;

private:
    void prepareReader();
    void appendText(const XMLCh* chars);
    void flushText();

    std::unique_ptr<XMLNode> rootNode;
    XMLNode* currentNode;  // innermost open element; null outside the root
    std::unique_ptr<GuardedParse> guarded;           // null without a guard
    std::unique_ptr<xercesc::SAX2XMLReader> reader;  // of the latest parse
    std::string reservedText;                        // empty
    std::string documentName;  // for the report of a missing document
    const char* documentText;  // borrowed while parseString runs
    TreeBudget budget;         // of the latest parse
    // The reader cuts long text anywhere. Where it cuts a surrogate pair, this
    // is the first half, which waits for the second; else 0.
    XMLCh highSurrogate;
};

// `source` in the code page of the process, up to its NUL; with `replaceSub`
// each byte 0x1A becomes "?". A null `source` is the empty text.
//
// THROWS: std::bad_alloc when the XML library cannot convert the text.
std::string transcodeToString(const XMLCh* source, bool replaceSub);

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
