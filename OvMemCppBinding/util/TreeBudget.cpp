#include "OvMemCppBinding/util/TreeBudget.h"

#include <string>

#include "OvMemCppBinding/util/DomException.h"

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

std::size_t depthLimit = TreeBudget::unlimited;
std::size_t bytesLimit = TreeBudget::unlimited;

}  // namespace

void TreeBudget::setLimits(std::size_t maxDepth, std::size_t maxBytes) {
    depthLimit = maxDepth;
    bytesLimit = maxBytes;
}

void TreeBudget::liftLimits() {
    setLimits(unlimited, unlimited);
}

void TreeBudget::enter() {
    if (depth >= depthLimit) {
        throw DomException(
            "XmlPlatformGuard: a document may be nested no deeper than " +
            std::to_string(depthLimit) + " elements");
    }
    ++depth;
}

void TreeBudget::leave() {
    if (depth > 0)
        --depth;
}

void TreeBudget::spend(std::size_t bytes) {
    if (bytes > bytesLimit - spent) {
        throw DomException(
            "XmlPlatformGuard: the tree of a document may hold no more than " +
            std::to_string(bytesLimit) + " bytes");
    }
    spent += bytes;
}

}  // namespace Orvane::Net::OvModelEventManager::Util
