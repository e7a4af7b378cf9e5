#include "OvMemCppBinding/util/TreeBudget.h"

#include <string>

#include "OvMemCppBinding/util/DomException.h"

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

// Time charged as memory: to pass one declaration takes about a nanosecond.
constexpr std::size_t declarationPrice = 64;
constexpr std::size_t declarationsPassedForOne = 8;

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

void TreeBudget::declare(std::size_t count) {
    spend(declarationPrice * count);
    declared += count;
}

void TreeBudget::undeclare(std::size_t count) {
    declared -= count;
}

void TreeBudget::lookUp(std::size_t prefixes) {
    spend(declared * prefixes / declarationsPassedForOne);
}

}  // namespace Orvane::Net::OvModelEventManager::Util
