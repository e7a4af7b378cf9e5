#include "emulator/OvMemBinding/SpentPages.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

using Orvane::Net::OvModelEventManager::Emulator::giveBackPages;

namespace {

const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

std::size_t zerosIn(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count(text, '\0'));
}

// Pages that are given back read as zeros. The text is large enough for a block
// of its own, so that it does not matter where in a page it begins.
class SpentPages : public testing::Test {
protected:
    std::size_t toNextPage() const {
        const auto address = reinterpret_cast<std::uintptr_t>(text.data());
        return (page - address % page) % page;
    }

    std::string text = std::string(64 * page, 'x');
};

}  // namespace

TEST_F(SpentPages, AreTheWholeOnesWithinTheTextAndNoOthers) {
    const std::size_t first = toNextPage();
    const std::string_view all = text;
    giveBackPages(all.substr(first + 1, 3 * page));
    EXPECT_EQ(all.substr(0, first + page), std::string(first + page, 'x'));
    EXPECT_EQ(all.substr(first + page, 2 * page), std::string(2 * page, '\0'));
    EXPECT_EQ(zerosIn(all), 2 * page);
    giveBackPages(all.substr(first + 10 * page, 3 * page));
    EXPECT_EQ(all.substr(first + 10 * page, 3 * page),
              std::string(3 * page, '\0'));
    EXPECT_EQ(zerosIn(all), 5 * page);
}

TEST_F(SpentPages, AreNoneInATextThatHoldsNoWholePage) {
    const std::size_t first = toNextPage();
    const std::string_view all = text;
    giveBackPages(all.substr(first, 0));
    giveBackPages(all.substr(first, page - 1));
    giveBackPages(all.substr(first + 1, 2 * page - 2));
    giveBackPages({});
    EXPECT_EQ(zerosIn(all), 0U);
}
