#include "OvMemCppBinding/util/ParseWatch.h"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "OvMemCppBinding/util/DomException.h"

namespace Orvane::Net::OvModelEventManager::Util {

using xercesc::RefVectorOf;
using xercesc::XMLAttr;
using xercesc::XMLString;
using xercesc::XMLUni;

namespace {

bool isDeclaration(const XMLAttr& attribute) {
    const XMLCh* const prefix = attribute.getPrefix();
    return XMLString::equals(prefix, XMLUni::fgXMLNSString) ||
           (XMLString::stringLen(prefix) == 0 &&
            XMLString::equals(attribute.getName(), XMLUni::fgXMLNSString));
}

}  // namespace

ParseWatch::ParseWatch(TreeBudget& theBudget, ParseTime& theTime)
    : budget(theBudget), time(theTime) {}

// The XML library looks up the prefix of the element, even if it has none, and
// that of each attribute that has one; of those twice where it has met one that
// hints at a schema. `attributes` may be longer than `count`.
void ParseWatch::startElement(const xercesc::XMLElementDecl&, unsigned int,
                              const XMLCh*,
                              const RefVectorOf<XMLAttr>& attributes,
                              XMLSize_t count, bool isEmpty, bool) {
    time.check();
    std::size_t declarations = 0;
    std::size_t lookUps = 1;
    for (XMLSize_t i = 0; i < count; ++i) {
        const XMLAttr& attribute = *attributes.elementAt(i);
        if (isDeclaration(attribute))
            ++declarations;
        else if (XMLString::stringLen(attribute.getPrefix()) != 0)
            lookUps += 2;
    }
    budget.declare(declarations);
    budget.lookUp(lookUps);
    // An empty element has no end of its own.
    if (isEmpty)
        budget.undeclare(declarations);
    else
        declared.push_back(declarations);
}

void ParseWatch::endElement(const xercesc::XMLElementDecl&, unsigned int, bool,
                            const XMLCh*) {
    time.check();
    budget.undeclare(declared.back());
    declared.pop_back();
}

void ParseWatch::docCharacters(const XMLCh*, XMLSize_t, bool) {
    time.check();
}

void ParseWatch::docComment(const XMLCh*) {
    time.check();
}

void ParseWatch::docPI(const XMLCh*, const XMLCh*) {
    time.check();
}

void ParseWatch::ignorableWhitespace(const XMLCh*, XMLSize_t, bool) {
    time.check();
}

void ParseWatch::startDocument() {}

void ParseWatch::endDocument() {}

void ParseWatch::resetDocument() {}

void ParseWatch::startEntityReference(const xercesc::XMLEntityDecl&) {}

void ParseWatch::endEntityReference(const xercesc::XMLEntityDecl&) {}

void ParseWatch::XMLDecl(const XMLCh*, const XMLCh*, const XMLCh*,
                         const XMLCh*) {}

void DoctypeRefusal::startDTD(const XMLCh*, const XMLCh*, const XMLCh*) {
    throw DomException(
        "XmlPlatformGuard: a document may have no document type");
}

}  // namespace Orvane::Net::OvModelEventManager::Util
