#include <filesystem>
#include <iomanip>
#include <iostream>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/hostile/HostileReply.h"
#include "tests/hostile/HostileRun.h"
#include "tests/support/TemporaryFolder.h"

namespace OvMemTest {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool measured = false;
#else
constexpr bool measured = true;
#endif

// In a folder with a FIFO.
class HostileReplies : public testing::TestWithParam<HostileReply> {
protected:
    HostileReplies() {
        std::filesystem::current_path(folder.file(""));
        EXPECT_EQ(::mkfifo("fifo", 0600), 0);
    }
    ~HostileReplies() override { std::filesystem::current_path(before); }

    // Plays the reply and prints what it took.
    void play(bool guarded, Fate expected) {
        const HostileRun run(reply, guarded);
        ASSERT_TRUE(run.ended()) << run.whyNot();
        if (guarded && reply.guardedWhenSlow == run.fate()) {
            expected = run.fate();
        }
        EXPECT_EQ(run.fate(), expected);
        EXPECT_EQ(run.thrown(),
                  expected.text.empty() ? "nothing" : "DomException");
        EXPECT_EQ(run.lost(), 0);
        if (measured) {
            EXPECT_LE(run.seconds(), guarded ? 1 : 20);
            EXPECT_LE(run.mebibytes(), 256);
        }
        std::cout << std::fixed << std::setprecision(3) << reply.name
                  << (guarded ? " guarded: " : " bare: ") << run.seconds()
                  << " s, " << std::setprecision(0) << run.mebibytes()
                  << " MiB\n";
    }

    const std::filesystem::path before = std::filesystem::current_path();
    const TemporaryFolder folder;
    const HostileReply reply = GetParam();
};

std::string nameOf(const testing::TestParamInfo<HostileReply>& info) {
    return info.param.name;
}

}  // namespace

TEST_P(HostileReplies, EndAsDocumentedUnderTheGuard) {
    play(true, reply.guarded);
}

TEST_P(HostileReplies, MeetTheReadersDefaultsWithoutIt) {
    if (!reply.bare) {
        GTEST_SKIP() << "takes too much without the guard";
    }
    play(false, *reply.bare);
}

INSTANTIATE_TEST_SUITE_P(Each, HostileReplies,
                         testing::ValuesIn(hostileReplies()), nameOf);

TEST(HostileReplyTable, HoldsManyOfDifferentNames) {
    std::set<std::string> names;
    for (const HostileReply& reply : hostileReplies()) {
        names.insert(reply.name);
    }
    EXPECT_EQ(names.size(), hostileReplies().size());
    EXPECT_GE(names.size(), 60U);
}

// Under the guard no reply opens anything.
TEST(HostileReplyTable, ForeseesNeitherFilesNorSocketsUnderTheGuard) {
    for (const HostileReply& reply : hostileReplies()) {
        EXPECT_EQ(reply.guarded.files, 0) << reply.name;
        EXPECT_EQ(reply.guarded.sockets, 0) << reply.name;
    }
}

// What the caller gets is what these say: each is played.
TEST(HostileReplyTable, ForeseesTheSameIdentifiersWhereverBothAccept) {
    int both = 0;
    for (const HostileReply& reply : hostileReplies()) {
        if (reply.bare && reply.bare->text.empty() &&
            reply.guarded.text.empty()) {
            EXPECT_EQ(reply.guarded.identifiers, reply.bare->identifiers)
                << reply.name;
            ++both;
        }
    }
    EXPECT_GE(both, 40);
}

// Nor does the caller get a part of what is refused.
TEST(HostileReplyTable, ForeseesNoIdentifierOfARefusedReply) {
    for (const HostileReply& reply : hostileReplies()) {
        for (const Fate& fate :
             {reply.guarded, reply.guardedWhenSlow.value_or(reply.guarded)}) {
            EXPECT_TRUE(fate.text.empty() || fate.identifiers.empty())
                << reply.name;
        }
    }
}

}  // namespace OvMemTest
