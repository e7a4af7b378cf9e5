#include "OvMemCppBinding/schemas/SharedClientIDs.h"

#include <algorithm>
#include <new>
#include <utility>

#include "OvMemCppBinding/util/DomException.h"
#include "OvMemCppBinding/util/XMLNode.h"
#include "OvMemCppBinding/util/XmlEscape.h"
#include "OvMemCppBinding/util/XmlStream.h"

namespace Orvane::Schemas::OvModelEventManager::_2009_06::Base {

using Net::OvModelEventManager::Util::DomException;
using Net::OvModelEventManager::Util::escape;
using Net::OvModelEventManager::Util::XMLNode;
using Net::OvModelEventManager::Util::XmlStream;

namespace {

constexpr const char* schemaNamespace =
    "http://www.orvane.com/Schemas/OvModelEventManager/_2009_06/base";
constexpr const char* childName = "sharedClients";

// All or nothing: an insertion that has to make room itself moves what was
// there before it copies, and loses it when a copy fails.
void append(std::vector<std::string>& target,
            const std::vector<std::string>& source) {
    const std::size_t needed = target.size() + source.size();
    if (target.capacity() < needed)
        target.reserve(std::max(needed, 2 * target.capacity()));
    target.insert(target.end(), source.begin(), source.end());
}

}  // namespace

SharedClientIDs::SharedClientIDs() : BaseObject(schemaNamespace) {}

SharedClientIDs::SharedClientIDs(const SharedClientIDs& other) = default;

SharedClientIDs::SharedClientIDs(SharedClientIDs&& other)
    : BaseObject(other), sharedClients(std::move(other.sharedClients)) {}

SharedClientIDs& SharedClientIDs::operator=(const SharedClientIDs& other) =
    default;

SharedClientIDs& SharedClientIDs::operator=(SharedClientIDs&& other) {
    BaseObject::operator=(other);
    if (this != &other) {
        sharedClients.clear();
        sharedClients.swap(other.sharedClients);
    }
    return *this;
}

SharedClientIDs::~SharedClientIDs() = default;

SharedClientIDs* SharedClientIDs::reallyClone() {
    return new SharedClientIDs(*this);
}

void SharedClientIDs::getNamespaces(std::set<std::string>& namespaces) const {
    namespaces.insert(namespaceURI);
}

void SharedClientIDs::getSharedClients(std::vector<std::string>& out) {
    append(out, sharedClients);
}

void SharedClientIDs::setSharedClients(const std::vector<std::string>& ids) {
    append(sharedClients, ids);
}

void SharedClientIDs::addSharedClientID(const std::string& id) {
    sharedClients.push_back(id);
}

void SharedClientIDs::outputXML(XmlStream& stream,
                                const std::string& elementName) const {
    outputXMLBase(stream, elementName,
                  "Orvane::Schemas::OvModelEventManager::_2009_06::Base::"
                  "SharedClientIDs::outputXML");
    stream << stream.closeStartTag(false);
    // Deliberate: the colon stands even without a prefix.
    // See docs/irregularities.md#colon-without-prefix.
    const std::string name = stream.getPrefix(namespaceURI) + ":" + childName;
    const std::string opening = "<" + name + ">";
    const std::string closing = "</" + name + ">";
    for (const std::string& id : sharedClients)
        stream << opening << escape(id) << closing;
    stream << stream.endElement(namespaceURI, elementName);
    // Without memory a stream says nothing and cuts the text short.
    if (!stream.good())
        throw std::bad_alloc();
}

void SharedClientIDs::parse(const XMLNode& node) {
    // Deliberate: the room is for this node's children, not for the sum.
    // See docs/irregularities.md#room-for-one-node.
    if (sharedClients.capacity() < node.children.size())
        sharedClients.reserve(node.children.size());
    for (const XMLNode* child : node.children) {
        if (child == nullptr)
            continue;
        if (child->name != childName)
            throw DomException("Unexpected node name: " + child->name);
        sharedClients.push_back(child->text);
    }
}

}  // namespace Orvane::Schemas::OvModelEventManager::_2009_06::Base
