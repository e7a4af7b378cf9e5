#include "emulator/store/RecentPuts.h"

#include <algorithm>
#include <utility>

namespace Orvane::Net::OvModelEventManager::Emulator {

bool RecentPuts::contains(const PutMark& mark) const {
    return std::find(marks.begin(), marks.end(), mark) != marks.end();
}

void RecentPuts::add(PutMark mark) {
    marks.push_back(std::move(mark));
}

void RecentPuts::forgetOld() noexcept {
    while (marks.size() > rememberedPuts) {
        marks.pop_front();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
