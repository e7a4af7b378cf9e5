#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <numeric>
#include <string>
#include <vector>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/CliTest.h"
#include "tests/support/ChildProcess.h"

using OvMemTest::ChildProcess;

// ovmem puts and ovmem gets, each in a process of its own, one after the other,
// for as long as one likes.

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::uintmax_t mebibyte = 1024 * 1024;
constexpr int notAllowed = 77;

double sum(const std::vector<double>& seconds, std::size_t first,
           std::size_t count) {
    return std::accumulate(seconds.begin() + static_cast<long>(first),
                           seconds.begin() + static_cast<long>(first + count),
                           0.0);
}

class OneShotPairs : public OvMemTest::CliTest {
protected:
    // So many pairs with events of so many bytes, and a look at the log after
    // each process.
    void run(std::size_t pairs, std::size_t bytes) {
        registerClient("valve");
        for (std::size_t pair = 0; pair < pairs && !HasFailure(); ++pair) {
            std::string events = std::to_string(pair) + "\n";
            events.resize(std::max(events.size(), bytes), 'e');
            const auto start = Clock::now();
            const auto put = as("pump").input(events).run({"put"});
            lookAtLog();
            const std::string got = eventsOf("valve");
            seconds.push_back(
                std::chrono::duration<double>(Clock::now() - start).count());
            lookAtLog();
            EXPECT_EQ(put.exitCode, 0) << put;
            EXPECT_TRUE(got == events) << "pair " << pair;
        }
        EXPECT_LE(longestLog, 8 * mebibyte);
        std::cout << pairs << " pairs: the longest log has " << longestLog
                  << " bytes" << std::endl;
    }

    // How much longer the last ones take than the first ones.
    double slowdown(std::size_t count) const {
        const double first = sum(seconds, 0, count);
        const double last = sum(seconds, seconds.size() - count, count);
        std::cout << "the first " << count << " took " << first
                  << " s, the last " << last << " s, ratio " << last / first
                  << std::endl;
        return last / first;
    }

    void useStoreIn(const fs::path& place) {
        store = place / "events.db";
        ovmem.set("OVMEM_STORE", "sqlite:" + store.string());
    }

private:
    void lookAtLog() {
        std::error_code gone;
        const auto size = fs::file_size(store.string() + "-wal", gone);
        longestLog = std::max(longestLog, gone ? 0 : size);
    }

    fs::path store = folder / "events.db";
    std::uintmax_t longestLog = 0;
    std::vector<double> seconds;
};

// The same on a disk of 8 MiB, which only this test sees.
class OneShotPairsOnASmallDisk : public OneShotPairs {
protected:
    void runOnSmallDisk(std::size_t pairs, std::size_t bytes) {
        const fs::path disk = folder / "disk";
        fs::create_directory(disk);
        ChildProcess child([&] {
            if (!mountSmallDisk(disk)) {
                return notAllowed;
            }
            useStoreIn(disk);
            run(pairs, bytes);
            return HasFailure() ? 1 : 0;
        });
        ASSERT_TRUE(child.awaitEnd(std::chrono::hours(2)));
        if (child.exitStatus() == notAllowed) {
            GTEST_SKIP() << "A file system may not be mounted here: run the "
                            "test as root, or allow user namespaces.";
        }
        std::cout << child.output();
        EXPECT_EQ(child.exitStatus(), 0) << child.output() << child.errors();
    }

private:
    static bool mountSmallDisk(const fs::path& place) {
        const uid_t user = ::geteuid();
        const int own = user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
        if (::unshare(own) != 0) {
            return false;
        }
        if (user != 0) {
            std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        }
        // Nothing of it is to be seen outside.
        return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) ==
                   0 &&
               ::mount("none", place.c_str(), "tmpfs", 0, "size=8m") == 0;
    }
};

using LongOneShotPairs = OneShotPairs;
using LongOneShotPairsOnASmallDisk = OneShotPairsOnASmallDisk;

}  // namespace

// More bytes than the log may have.
TEST_F(OneShotPairs, LeaveAShortLog) {
    run(10, mebibyte);
}

TEST_F(LongOneShotPairs, LeaveAShortLogAndGetNoSlower) {
    run(10000, 0);
    EXPECT_LE(slowdown(100), 3.0);
}

TEST_F(OneShotPairsOnASmallDisk, DoNotFillIt) {
    runOnSmallDisk(10, mebibyte);
}

TEST_F(LongOneShotPairsOnASmallDisk, DoNotFillIt) {
    runOnSmallDisk(10000, 0);
}
