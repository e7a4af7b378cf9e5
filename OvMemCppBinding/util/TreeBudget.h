#ifndef OVMEMCPPBINDING_UTIL_TREEBUDGET_H
#define OVMEMCPPBINDING_UTIL_TREEBUDGET_H

#include <cstddef>
#include <limits>

namespace Orvane::Net::OvModelEventManager::Util {

// What the tree of one document may come to.
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

private:
    std::size_t depth = 0;
    std::size_t spent = 0;
};

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
