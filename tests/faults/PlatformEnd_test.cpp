#include <chrono>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/faults/FailingHeap.h"
#include "tests/support/ChildProcess.h"

// To end the platform, the XML library asks for a little memory in one of its
// destructors, which cannot say that there is none: the process aborts.

namespace OvMemTest {

namespace {

using namespace std::chrono_literals;
using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

struct End {
    std::uint64_t requests = 0;
    std::optional<int> signal;
};

// Of the platform, by destroying the one who started it.
template <class Starter>
End endWith(FailingHeap::Plan plan) {
    ChildProcess child([plan] {
        std::optional<Starter> starter(std::in_place);
        {
            const FailingHeap::Scope scope(plan);
            starter.reset();
        }
        std::cout << FailingHeap::requests();
        return 0;
    });
    EXPECT_TRUE(child.awaitEnd(10s));
    if (child.signal()) {
        return {0, child.signal()};
    }
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    return {std::stoull(child.output()), {}};
}

}  // namespace

TEST(PlatformEnd, OfAConnectionWithoutMemoryAborts) {
    const End whole = endWith<OvMEMConnection>({});
    EXPECT_EQ(whole.signal, std::nullopt);
    EXPECT_EQ(whole.requests, 1U);
    EXPECT_EQ(endWith<OvMEMConnection>({1, false}).signal, SIGABRT);
}

// The sanitizers leave nothing to refuse: a guard takes memory from malloc.
TEST(PlatformEnd, OfAGuardWithoutMemoryAborts) {
    const End whole = endWith<XmlPlatformGuard>({});
    EXPECT_EQ(whole.signal, std::nullopt);
    if (whole.requests == 0) {
        GTEST_SKIP();
    }
    EXPECT_EQ(whole.requests, 1U);
    EXPECT_EQ(endWith<XmlPlatformGuard>({1, false}).signal, SIGABRT);
}

}  // namespace OvMemTest
