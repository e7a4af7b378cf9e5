#include "OvMemCppBinding/util/XMLNode.h"

#include <algorithm>
#include <ostream>

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

// The children are taken from the back of the vector; reversed once, they
// come first to last.
XMLNode* enter(XMLNode* node) {
    std::reverse(node->children.begin(), node->children.end());
    return node;
}

void printTag(std::ostream& os, const std::string& indent, const char* opening,
              const std::string& name) {
    os << indent << opening << name << ">" << std::endl;
}

}  // namespace

XMLNode::XMLNode() : parent(nullptr) {}

// The tree is its own work list: a child that is entered points back to where
// the walk came from. So a destructor, which must not fail, allocates nothing.
XMLNode::~XMLNode() {
    XMLNode* node = enter(this);
    for (;;) {
        if (!node->children.empty()) {
            XMLNode* child = node->children.back();
            node->children.pop_back();
            if (child != nullptr) {
                child->parent = node;
                node = enter(child);
            }
        } else if (node != this) {
            XMLNode* finished = node;
            node = node->parent;
            delete finished;
        } else {
            break;
        }
    }
    parent = nullptr;
}

void XMLNode::setAttribute(const std::string& attribute,
                           const std::string& value) {
    attributes[attribute] = value;
}

std::string XMLNode::getAttribute(const std::string& attribute) const {
    const auto found = attributes.find(attribute);
    return found == attributes.end() ? std::string() : found->second;
}

bool XMLNode::hasAttribute(const std::string& attribute) const {
    return attributes.find(attribute) != attributes.end();
}

void XMLNode::print(std::ostream& os, const std::string& indent) const {
    struct Level {
        const XMLNode* node;
        std::size_t nextChild;
    };
    std::string margin = indent;
    std::vector<Level> open{{this, 0}};
    printTag(os, margin, "<", name);
    while (!open.empty()) {
        Level& level = open.back();
        if (level.nextChild < level.node->children.size()) {
            const XMLNode* child = level.node->children[level.nextChild++];
            if (child != nullptr) {
                open.push_back({child, 0});
                margin += "  ";
                printTag(os, margin, "<", child->name);
            }
        } else {
            printTag(os, margin, "</", level.node->name);
            open.pop_back();
            margin.resize(indent.size() +
                          2 * (open.empty() ? 0 : open.size() - 1));
        }
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Util
