#ifndef EMULATOR_STORE_RECENTPUTS_H
#define EMULATOR_STORE_RECENTPUTS_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

#include "emulator/store/TextDigest.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// How many puts of each client a store remembers that has dedupe=correlation.
inline constexpr std::size_t rememberedPuts = 1000;

// By what a put is known when it comes again: its correlation and its text. Of
// the text only the length and a digest are kept. Marks are compared within one
// client, so whoever made two texts of one digest would drop a put of its own.
struct PutMark {
    PutMark(std::string_view correlation, std::string_view text)
        : id(correlation), length(text.size()), digest(text) {}

    bool operator==(const PutMark&) const = default;

    std::string id;
    std::size_t length;
    TextDigest digest;
};

// The last puts of one client, in memory.
class RecentPuts {
public:
    bool contains(const PutMark& mark) const;

    // Before the put, since it may lack memory; nothing has changed then. One
    // of the next two comes afterwards.
    void add(PutMark mark);

    // The put was stored, so the oldest one goes if they are too many.
    void forgetOld() noexcept;

    // The last one was not put after all.
    void takeBack() noexcept { marks.pop_back(); }

private:
    std::deque<PutMark> marks;
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
