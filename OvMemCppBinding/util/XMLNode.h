#ifndef OVMEMCPPBINDING_UTIL_XMLNODE_H
#define OVMEMCPPBINDING_UTIL_XMLNODE_H

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Util {

// One element of a parsed XML document: a plain record with public members.
//
// Ownership: a node owns its children; the root belongs to whoever made it.
// Deleting the root frees the whole tree. Never delete a child on its own.
//
// Text is in the code page of the process, as the XML library transcodes it.
// Names bear no prefix, and namespace declarations are not attributes.
//
// Threads: one at a time, or many that only read.
class OVMEM_EXPORT XMLNode {
public:
    // An empty node: no parent, no children, no attributes.
    XMLNode();

    // Frees the children first to last, each with the tree below it, without
    // recursion: a tree of any depth is freed in constant stack space.
    ~XMLNode();

    // Attributes.

    // Adds the attribute, or replaces the value it had.
    void setAttribute(const std::string& name, const std::string& value);

    // A copy of the value; empty when there is no such attribute. Only
    // hasAttribute tells an absent attribute from an empty one.
    std::string getAttribute(const std::string& name) const;

    bool hasAttribute(const std::string& name) const;

    // Diagnosis.

    // Writes the names of this element and of all below it, a line for every
    // start and end tag, each level indented by two more blanks. Writes
    // neither namespaces nor attributes nor text.
    void print(std::ostream& os, const std::string& indent) const;

    // The record.

    std::string namespaceURI;        // empty for an element in no namespace
    std::string name;                // local name
    std::vector<XMLNode*> children;  // owned, in document order
    std::string text;                // own character data only, not trimmed
    XMLNode* parent;                 // not owned; null for the root
    std::map<std::string, std::string> attributes;  // by local name

private:
    XMLNode(const XMLNode&) = delete;  // would free the children twice
    XMLNode& operator=(const XMLNode&) = delete;
};

}  // namespace Util
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
