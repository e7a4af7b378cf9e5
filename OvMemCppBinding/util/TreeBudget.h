#ifndef OVMEMCPPBINDING_UTIL_TREEBUDGET_H
#define OVMEMCPPBINDING_UTIL_TREEBUDGET_H

#include <cstddef>
#include <limits>

namespace Orvane::Net::OvModelEventManager::Util {

// What the tree of one document may come to, with the namespaces that the XML
// library keeps and searches for it.
//
// There are no limits but those that an XmlPlatformGuard has set, for all
// documents of the process.
//
// Threads: a budget serves one at a time; the limits are set and lifted while
// no budget is in use.
class TreeBudget {
public:
    static constexpr std::size_t unlimited =
        std::numeric_limits<std::size_t>::max();

    // `depth` in elements within each other, `bytes` in memory.
    static void setLimits(std::size_t depth, std::size_t bytes);
    static void liftLimits();

    // An element begins or ends.
    //
    // THROWS: DomException beyond the limit.
    void enter();
    void leave();

    // The tree grows.
    //
    // THROWS: DomException beyond the limit.
    void spend(std::size_t bytes);

    // Namespace declarations begin and cease to be in scope.
    //
    // THROWS: DomException beyond the limit of bytes: each costs 64.
    void declare(std::size_t count);
    void undeclare(std::size_t count);

    // The XML library looks for prefixes, each among all declarations in
    // scope.
    //
    // THROWS: DomException beyond the limit of bytes: to pass eight
    // declarations costs 1.
    void lookUp(std::size_t prefixes);

private:
    std::size_t depth = 0;
    std::size_t spent = 0;
    std::size_t declared = 0;
};

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
