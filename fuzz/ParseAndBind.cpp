#include <vector>

#include <xercesc/util/OutOfMemoryException.hpp>

#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/DomException.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "fuzz/Fuzz.h"

// Any bytes as a reply that lists clients: parsed, and bound.

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;
using Orvane::Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;

void requireOrder(const XMLNode& node) {
    for (const XMLNode* child : node.children) {
        Fuzz::require(child->parent == &node, "a child knows its parent");
        requireOrder(*child);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const XmlPlatformGuard guard;
    try {
        SAXToNodeParser parser;
        const XMLNode* root = parser.parseString(Fuzz::textOf(data, size));
        Fuzz::require(root != nullptr && root->parent == nullptr,
                      "there is a root");
        requireOrder(*root);
        SharedClientIDs bound;
        bound.parse(*root);
        std::vector<std::string> ids;
        bound.getSharedClients(ids);
        Fuzz::require(ids.size() == root->children.size(),
                      "each child is bound");
    } catch (DomException& exception) {
        Fuzz::require(!exception.getMessage().empty(),
                      "an exception says something");
    } catch (const xercesc::OutOfMemoryException&) {
    }
    return 0;
}
