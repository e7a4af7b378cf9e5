#ifndef OVMEMCPPBINDING_SCHEMAS_SHAREDCLIENTIDS_H
#define OVMEMCPPBINDING_SCHEMAS_SHAREDCLIENTIDS_H

#include <set>
#include <string>
#include <vector>

#include "OvMemCppBinding/Export.h"
#include "OvMemCppBinding/util/BaseObject.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Util {
class XMLNode;
class XmlStream;
}  // namespace Util
}  // namespace OvModelEventManager
}  // namespace Net

namespace Schemas {
namespace OvModelEventManager {
namespace _2009_06 {
namespace Base {

// The clients that share events, as the schema type of the same name: a list
// of identifiers in order, duplicates and empty ones kept.
//
// Read from a parsed document and written to an XmlStream:
//
//     <ns0:E xmlns:ns0="http://www.orvane.com/...">
//     with one <ns0:sharedClients>identifier</ns0:sharedClients> each
//
// (docs/wire-format.md shows it whole.)
//
// Ownership and threads: as BaseObject.
class OVMEM_EXPORT SharedClientIDs
    : public Net::OvModelEventManager::Util::BaseObject {
public:
    // Construction and copying.
    //
    // Copies and moves take the reference count of their source along
    // (docs/irregularities.md#copied-reference-count). A move leaves the
    // source with an empty list, its namespace and its count.

    SharedClientIDs();
    SharedClientIDs(const SharedClientIDs& other);
    SharedClientIDs(SharedClientIDs&& other);
    SharedClientIDs& operator=(const SharedClientIDs& other);
    SharedClientIDs& operator=(SharedClientIDs&& other);
    virtual ~SharedClientIDs();

    virtual SharedClientIDs* reallyClone();

    // Inserts the schema namespace.
    virtual void getNamespaces(std::set<std::string>& namespaces) const;

    // The list.

    // Appends the identifiers to `out`.
    void getSharedClients(std::vector<std::string>& out);

    // Appends `ids` to the list; despite its name it replaces nothing
    // (docs/irregularities.md#set-appends).
    void setSharedClients(const std::vector<std::string>& ids);

    void addSharedClientID(const std::string& id);

    // XML.

    // Inserts the object as one element. Identifiers are escaped. Inside a
    // document that did not declare the schema namespace the children are
    // written as "<:sharedClients>"
    // (docs/irregularities.md#colon-without-prefix).
    //
    // THROWS: std::bad_alloc when the stream does not take the whole text, for
    // want of memory or because it was not good() before. It may then hold a
    // part of it.
    void outputXML(Net::OvModelEventManager::Util::XmlStream& stream,
                   const std::string& elementName) const;

    // Appends the text of each child of `node`, untrimmed. Neither the name of
    // `node` nor any namespace is looked at.
    //
    // THROWS: DomException for a child not named "sharedClients"; the
    // identifiers before it stay in the list.
    void parse(const Net::OvModelEventManager::Util::XMLNode& node);

private:
    std::vector<std::string> sharedClients;
};

}  // namespace Base
}  // namespace _2009_06
}  // namespace OvModelEventManager
}  // namespace Schemas
}  // namespace Orvane

#endif
