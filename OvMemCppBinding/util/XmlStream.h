#ifndef OVMEMCPPBINDING_UTIL_XMLSTREAM_H
#define OVMEMCPPBINDING_UTIL_XMLSTREAM_H

#include <cstddef>
#include <deque>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Util {

// A string stream that builds the tags of one XML document and remembers the
// prefixes of its namespaces.
//
// The shape of what it writes:
//   - there is no XML declaration;
//   - every start tag begins on a new line, also the first;
//   - the first start tag declares all namespaces known by then, in the order
//     of their URIs; no other tag declares any;
//   - prefixes are ns0, ns1, ... in the order of arrival, never used twice;
//   - nothing is indented, and nothing is escaped: pass text through escape.
//
// Order of use:
//
//     XmlStream xml;
//     xml.addNamespace("urn:fleet");
//     xml << xml.startElement("urn:fleet", "ships") << xml.closeStartTag(false)
//         << xml.startElement("urn:fleet", "ship")
//         << xml.attribute("name", escape("A & B")) << xml.closeStartTag(true)
//         << xml.endElement("urn:fleet", "ships");
//     std::string document = xml.str();
//
// gives a line feed and then
//
//     <ns0:ships xmlns:ns0="urn:fleet">
//     <ns0:ship name="A &amp; B"/></ns0:ships>
//
// (In one expression the tags are built from left to right since C++17; with
// an older standard write one insertion a statement.)
//
// It derives from a string stream so that schema objects insert their text
// with ordinary <<, and behaves like one: an insertion for which there is no
// memory throws nothing, unless you call exceptions(); it sets badbit, and what
// is inserted then is dropped. Look at good() before you take the text. The
// outputXML of a schema object looks for itself.
//
// Lifetime: one stream, one document. Threads: one at a time.
// THROWS: std::bad_alloc, from the functions declared here.
class OVMEM_EXPORT XmlStream : public std::basic_stringstream<char> {
public:
    // An empty document, no namespaces.
    XmlStream();
    virtual ~XmlStream();

    // True until the first start tag has been built.
    bool isFirstElement() const;

    // Namespaces.
    //
    // A URI keeps the prefix it has. Numbering continues over all calls. A
    // namespace added after the first start tag is never declared.

    // Gives a prefix to every URI that has none, in ascending order.
    void addNamespaces(std::set<std::string> uris);

    // Gives `uri` a prefix; false if it has one already.
    bool addNamespace(const std::string& uri);

    // Takes the last entry of scopeFlags; if it is true, forgets `uri`. A
    // later addNamespace gives it a new number. Without an entry nothing
    // happens.
    void popNamespaceScope(const std::string& uri);

    // The prefix without a colon; empty for an unknown URI.
    std::string getPrefix(const std::string& uri) const;

    // The public member scopeFlags is a stack for callers that open and close
    // scopes: push addNamespace's result when an element opens, call
    // popNamespaceScope when it closes. Nothing else touches it.

    // Tags.
    //
    // These functions return text and leave that of the stream untouched;
    // insert what they return yourself. A name is written with the prefix of
    // `uri`, if it has one.

    // The start tag up to, and without, its '>': "\n<ns0:ship". A name that
    // contains ':' is taken as it stands.
    std::string startElement(const std::string& uri, const std::string& name);

    // The complete start tag with attributes, names and values as they are:
    // "\n<ns0:ship name=\"A\">".
    std::string startElement(
        const std::string& uri, const std::string& name,
        const std::vector<std::pair<std::string, std::string>>& attributes);

    // " name=\"A\"".
    std::string attribute(const std::string& name, const std::string& value);

    // "/>" or ">".
    std::string closeStartTag(bool empty);

    // "</ns0:ship>"; the name is formed as in startElement.
    std::string endElement(const std::string& uri, const std::string& name);

    // Scanning a finished document.
    //
    // Plain text search, not parsing: comments, CDATA sections and single
    // quotes are not understood, and the only blank that ends a name is a
    // space.

    // The namespace URI of the root element: the first declaration of its
    // prefix behind its name, also where that is a later element's or stands
    // in a text. A value that is never closed runs to the end of the document.
    // Empty if there is no such declaration, and if the root's tag ends before
    // any space (docs/irregularities.md#namespace-of-anothers-declaration).
    static std::string getRootNamespace(const std::string& document);

    // Where the start tag (or end tag) of an element begins, or npos. `key` is
    // the namespace URI, '^' and the local name: "urn:fleet^ship". A URI that
    // the document does not declare counts as that of no prefix. The first
    // match wins, also inside a longer name: "<ns0:ship" is found in
    // "<ns0:ships" (docs/irregularities.md#first-match-wins).
    static std::size_t findElementTag(const std::string& document,
                                      const std::string& key, bool startTag);

private:
    XmlStream(const XmlStream&) = delete;  // one stream, one document
    XmlStream& operator=(const XmlStream&) = delete;

    std::string qualifiedName(const std::string& uri,
                              const std::string& name) const;

    std::map<std::string, std::string> prefixes;  // URI to prefix

public:
    std::deque<bool> scopeFlags;  // see "Namespaces"

private:
    int prefixCounter;  // of the next prefix; never decreases
    bool firstElement;  // true until the first start tag
};

}  // namespace Util
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
