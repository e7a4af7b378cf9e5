#include <chrono>
#include <clocale>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

#include "OvMemCppBinding/util/LimitedMemory.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/hostile/Registration.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

namespace {

using Orvane::Net::OvModelEventManager::Util::LimitedMemory;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

constexpr std::size_t granted = 1000000;

// The heap of the process may grow by so much in all, for what the C library
// and ICU keep.
constexpr std::size_t kept = 65536;

// Kinds of replies, each a little different every time, so that what they
// break on is met at other points.
using Kind = std::function<std::vector<Piece>(std::size_t time)>;

// Something long, by which the memory of the XML library ends.
Kind tooLong(const std::string& beginning, const std::string& middle,
             std::size_t times, const std::string& end) {
    return [=](std::size_t time) {
        return std::vector<Piece>{
            {beginning}, {middle, times + 97 * (time % 1000)}, {end}};
    };
}

const std::vector<Kind> kinds{
    // An attribute's name, which the XML library loses if the value is too
    // much.
    [](std::size_t time) {
        return std::vector<Piece>{{"<r "},
                                  {"n", 225000 + 7 * (time % 1000)},
                                  {"='"},
                                  {"v", 10000 + 13 * (time % 1000)},
                                  {"'/>"}};
    },
    tooLong("<", "x", 250000, "/>"),
    tooLong("<", "x", 250000, ":r/>"),
    tooLong("<r><sharedClients>", "x", 1000000, "</sharedClients></r>"),
    tooLong("<r a='", "x", 400000, "'/>"),
    tooLong("<r xmlns='", "x", 150000, "'/>"),
    tooLong("<r><!--", "x", 400000, "--></r>"),
    tooLong("<r><?p ", "x", 400000, "?></r>"),
    tooLong("<r>", "<sharedClients/>", 5000, "</r>"),
    tooLong("<r>", "<a xmlns:p='u'><b p:c=''/></a>", 1500, "</r>"),
    tooLong("", "<a>", 1001, ""),
    // What is no XML, or goes too far.
    tooLong("<!DOCTYPE r [<!ENTITY e '", "x", 1, "'>]><r>&e;</r>"),
    tooLong("<r><sharedClients>", "x", 1, "</r>"),
    tooLong("<r>", "\xFF", 1, "</r>"),
    tooLong("<r>&", "e", 1, ";</r>"),
    tooLong("<r ", "a='' ", 2, "/>"),
    tooLong("<?xml version='1.0' encoding='", "x", 1, "'?><r/>"),
    tooLong("<?xml version='1.0' encoding='UTF-16'?>", "<r/>", 2, ""),
    tooLong("<r>", "<unknown/>", 1, "</r>"),
    // And many names, values and declarations of one element.
    [](std::size_t time) {
        std::string attributes;
        for (std::size_t i = 0; i < 1000 + time % 1000; ++i) {
            const std::string number = std::to_string(i);
            attributes.append(" xmlns:p").append(number).append("='u'");
            attributes.append(" p0:a").append(number).append("=''");
        }
        return std::vector<Piece>{{"<r" + attributes + "/>"}};
    },
};

std::size_t bytesInUse() {
    ::malloc_trim(0);
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

// A normal reply, which works.
void registerNormally(Registration& registration) {
    registration.script({{"<r><sharedClients>valve</sharedClients></r>"}});
    registration.shared.clear();
    EXPECT_EQ(registration.run(), nothingThrown);
    EXPECT_EQ(registration.shared, std::vector<std::string>{"valve"});
}

void registerHostilely(Registration& registration, std::size_t from,
                       std::size_t to) {
    for (std::size_t time = from; time < to; ++time) {
        registration.script(kinds[time % kinds.size()](time / kinds.size()));
        EXPECT_EQ(registration.run().type, "DomException") << time;
    }
}

int live(std::size_t times) {
    std::setlocale(LC_ALL, "C.UTF-8");
    const XmlPlatformGuard guard(granted);
    Registration registration;
    // So that whatever is loaded once is there.
    registerHostilely(registration, 0, kinds.size());
    registerNormally(registration);
    const std::size_t held = LimitedMemory::instance().held();
    const std::size_t inUse = bytesInUse();

    registerHostilely(registration, 0, times);
    EXPECT_EQ(LimitedMemory::instance().held(), held);
    registerNormally(registration);
    EXPECT_EQ(LimitedMemory::instance().held(), held);
    EXPECT_LE(bytesInUse(), inUse + kept);
    std::cout << times << " replies: " << held << " bytes held; heap " << inUse
              << " bytes before, " << bytesInUse() << " after\n";
    return testing::Test::HasFailure() ? 1 : 0;
}

void liveInAChild(std::size_t times) {
    ChildProcess child([times] { return live(times); });
    EXPECT_TRUE(child.awaitEnd(std::chrono::minutes(15))) << "still running";
    child.kill();
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    std::cout << child.output();
}

}  // namespace

TEST(ManyReplies, AfterHundredsOfHostileOnesANormalOneWorksInTheSameMemory) {
    liveInAChild(400);
}

TEST(TenThousandReplies, AreFollowedByANormalOneThatWorksInTheSameMemory) {
    liveInAChild(10000);
}

}  // namespace OvMemTest
