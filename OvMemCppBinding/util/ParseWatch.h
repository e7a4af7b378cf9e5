#ifndef OVMEMCPPBINDING_UTIL_PARSEWATCH_H
#define OVMEMCPPBINDING_UTIL_PARSEWATCH_H

#include <cstddef>
#include <vector>

#include <xercesc/framework/XMLDocumentHandler.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>

#include "OvMemCppBinding/util/ParseTime.h"
#include "OvMemCppBinding/util/TreeBudget.h"

namespace Orvane::Net::OvModelEventManager::Util {

// Looks on while a reader parses, for what the parser's own callbacks do not
// see: namespace declarations, which are charged to the budget, and comments
// and instructions, which take time.
//
// THROWS: each callback DomException, beyond the limits of the budget and of
// the time.
class ParseWatch : public xercesc::XMLDocumentHandler {
public:
    // Both are borrowed.
    ParseWatch(TreeBudget& budget, ParseTime& time);

    void startElement(const xercesc::XMLElementDecl& declaration,
                      unsigned int uri, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t count, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration,
                    unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override;
    void docCharacters(const XMLCh* chars, XMLSize_t length,
                       bool cdata) override;
    void docComment(const XMLCh* text) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;
    void ignorableWhitespace(const XMLCh* chars, XMLSize_t length,
                             bool cdata) override;

    // Nothing.
    void startDocument() override;
    void endDocument() override;
    void resetDocument() override;
    void startEntityReference(const xercesc::XMLEntityDecl& entity) override;
    void endEntityReference(const xercesc::XMLEntityDecl& entity) override;
    void XMLDecl(const XMLCh* version, const XMLCh* encoding,
                 const XMLCh* standalone, const XMLCh* detected) override;

private:
    TreeBudget& budget;
    ParseTime& time;
    std::vector<std::size_t> declared;  // by each open element
};

// Refuses a document type, whatever the environment says.
//
// THROWS: DomException.
class DoctypeRefusal : public xercesc::DefaultHandler {
public:
    void startDTD(const XMLCh* name, const XMLCh* publicId,
                  const XMLCh* systemId) override;
};

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
