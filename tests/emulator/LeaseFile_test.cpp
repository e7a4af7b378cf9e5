#include "emulator/store/LeaseFile.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/FailingLease.h"
#include "tests/emulator/Getting.h"
#include "tests/emulator/NumberedEvents.h"
#include "tests/emulator/StartedTransport.h"
#include "tests/emulator/Wire.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

// Leases of getters in several processes.

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;
using OvMemTest::FailingLease;
using OvMemTest::Getting;
using OvMemTest::numbersIn;
using OvMemTest::pump;
using OvMemTest::SystemCall;
using OvMemTest::valve;
using OvMemTest::waitToBeKilled;
namespace fs = std::filesystem;

namespace {

class LeaseFileTest : public testing::Test {
protected:
    LeaseFileTest() {
        options.path = folder.file("events.db");
        options.synchronous = Synchronous::normal;
        lease = LeaseFile::pathOf(options.path, valve);
        impatient = options;
        impatient.busyTimeoutMilliseconds = 50;
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
        store.putEvents(pump, "open;");
    }

    // A process that begins to get, says so, and goes on with `then`.
    template <typename Then>
    std::unique_ptr<ChildProcess> getter(Then then) const {
        auto child = std::make_unique<ChildProcess>([this, then] {
            SqliteStore store(options);
            Getting getting(store, valve);
            const std::string text = getting.begin();
            std::cout << "got " << text << std::endl;
            then(getting);
            return 0;
        });
        EXPECT_TRUE(child->awaitOutput("got open;\n", 10s)) << child->errors();
        return child;
    }

    std::string refusal() const {
        SqliteStore store(impatient);
        return Getting(store, valve).refusal();
    }

    std::string refusalBecause(const std::string& reason) const {
        return "The lease '" + lease + "' of the event store " + reason;
    }

    std::string taken() const {
        SqliteStore store(options);
        return Getting(store, valve).take();
    }

    mode_t rights() const {
        struct stat status {};
        EXPECT_EQ(::stat(lease.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options;
    SqliteOptions impatient;
    std::string lease;
};

// Whether this process has a lease open.
int openLeases() {
    int count = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const std::string path = fs::read_symlink(entry.path(), gone);
        count += path.find("-lease-") != std::string::npos ? 1 : 0;
    }
    return count;
}

}  // namespace

TEST_F(LeaseFileTest, EveryIdentityHasAFileBesideTheDatabase) {
    EXPECT_EQ(lease.size(), options.path.size() + 7 + 16);
    EXPECT_TRUE(lease.starts_with(options.path + "-lease-"));
    EXPECT_EQ(
        lease.find_first_not_of("0123456789abcdef", options.path.size() + 7),
        std::string::npos);
    EXPECT_NE(LeaseFile::pathOf("e", {"a", "bc"}),
              LeaseFile::pathOf("e", {"ab", "c"}));
}

TEST_F(LeaseFileTest, ItIsThereFromTheGetToItsEndAndBelongsToItsOwner) {
    SqliteStore store(options);
    Getting getting(store, valve);
    for (const mode_t mask : {0U, 0777U}) {
        const mode_t before = ::umask(mask);
        EXPECT_EQ(getting.begin(), "open;");
        ::umask(before);
        EXPECT_EQ(rights(), 0600U);
        getting.giveUp();
        EXPECT_FALSE(fs::exists(lease));
    }
    getting.begin();
    getting.complete();
    EXPECT_FALSE(fs::exists(lease));
}

TEST_F(LeaseFileTest, OfASharedStoreItIsForTheGroup) {
    options.access = Access::group;
    SqliteStore store(options);
    Getting getting(store, valve);
    const mode_t before = ::umask(0077);
    EXPECT_EQ(getting.begin(), "open;");
    ::umask(before);
    EXPECT_EQ(rights(), 0660U);
}

TEST_F(LeaseFileTest, AGetOfNothingNeedsNone) {
    EXPECT_EQ(taken(), "open;");
    fs::create_symlink("elsewhere", lease);
    EXPECT_EQ(taken(), "");
}

TEST_F(LeaseFileTest, TwoProcessesOfOneIdentityGetEveryEventOnce) {
    constexpr int count = 3000;
    const auto getAll = [this] {
        SqliteStore store(options);
        Getting getting(store, valve);
        std::string all;
        while (!fs::exists(folder.file("stop"))) {
            all += getting.take();
        }
        std::cout << all << getting.take() << std::flush;
        return 0;
    };
    EXPECT_EQ(taken(), "open;");
    ChildProcess first(getAll);
    ChildProcess second(getAll);
    SqliteStore store(options);
    for (int i = 0; i < count; ++i) {
        store.putEvents(pump, std::to_string(i) + ";");
    }
    folder.write("stop", "");
    ASSERT_TRUE(first.awaitEnd(60s));
    ASSERT_TRUE(second.awaitEnd(60s));
    EXPECT_EQ(first.exitStatus(), 0) << first.errors();
    EXPECT_EQ(second.exitStatus(), 0) << second.errors();
    std::vector<int> expected;
    for (int i = 0; i < count; ++i) {
        expected.push_back(i);
    }
    EXPECT_EQ(numbersIn(first.output() + second.output()), expected);
    EXPECT_FALSE(fs::exists(lease));
}

TEST_F(LeaseFileTest, AKilledGetterLeavesAFileThatTheNextOneUses) {
    const auto child = getter([](Getting&) { waitToBeKilled(); });
    child->kill();
    EXPECT_TRUE(fs::exists(lease));
    SqliteStore store(impatient);
    EXPECT_EQ(Getting(store, valve).take(), "open;");
    EXPECT_FALSE(fs::exists(lease));
}

TEST_F(LeaseFileTest, AnOldFileOfAKilledGetterIsUsedAsWell) {
    const auto child = getter([](Getting&) { waitToBeKilled(); });
    child->kill();
    fs::last_write_time(lease, fs::file_time_type::clock::now() - 1h);
    SqliteStore store(impatient);
    Getting getting(store, valve);
    EXPECT_EQ(getting.begin(), "open;");
    EXPECT_EQ(refusal().substr(0, 44),
              "Another getter has the events of this client");
}

TEST_F(LeaseFileTest, AStoppedGetterIsNamed) {
    const auto child = getter([](Getting&) { ::raise(SIGSTOP); });
    std::string text;
    // Until it is stopped.
    const auto limit = std::chrono::steady_clock::now() + 10s;
    do {
        text = refusal();
    } while (text.find("which is stopped") == std::string::npos &&
             std::chrono::steady_clock::now() < limit);
    const auto number = text.find("process ") + 8;
    const auto end = text.find(')', number);
    EXPECT_EQ(text.substr(0, number) + text.substr(end),
              "Another getter has the events of this client: process ), which "
              "is stopped, holds the lease '" +
                  lease +
                  "'. Let it go on or end it, then repeat the call. Give every "
                  "getter a client identity of its own.");
}

TEST_F(LeaseFileTest, AStoppedGetterLosesItsLeaseAndThenDoublesAtMost) {
    const auto child = getter([](Getting& getting) {
        std::cout << "pid " << ::getpid() << std::endl;
        ::raise(SIGSTOP);
        getting.complete();
    });
    ASSERT_TRUE(child->awaitOutput("pid ", 10s));
    ASSERT_TRUE(child->awaitOutput("\n", 10s));
    options.lease = 1s;
    {
        SqliteStore store(options);
        Getting next(store, valve);
        EXPECT_EQ(next.begin(), "open;");
        store.putEvents(pump, "close;");
        const auto at = child->output().find("pid ") + 4;
        ::kill(std::stoi(child->output().substr(at)), SIGCONT);
        ASSERT_TRUE(child->awaitEnd(10s));
        EXPECT_TRUE(fs::exists(lease));
        next.complete();
    }
    EXPECT_EQ(taken(), "close;");
}

TEST_F(LeaseFileTest, ALeaseWhoseTimeIsFarOffHasExpired) {
    using Offset = std::chrono::hours;
    for (const Offset offset : {Offset(1), Offset(-48), Offset(48)}) {
        const auto child = getter([](Getting&) { waitToBeKilled(); });
        fs::last_write_time(lease, fs::file_time_type::clock::now() + offset);
        SqliteStore store(impatient);
        EXPECT_EQ(Getting(store, valve).take(), "open;");
        store.putEvents(pump, "open;");
    }
}

TEST_F(LeaseFileTest, AForkedChildOfAKilledGetterHoldsNothing) {
    const auto child = getter([](Getting&) {
        const pid_t worker = ::fork();
        if (worker == 0) {
            ::close(STDOUT_FILENO);  // the reader waits for its end
            ::close(STDERR_FILENO);
            waitToBeKilled();
        }
        std::cout << "forked " << worker << std::endl;
        waitToBeKilled();
    });
    ASSERT_TRUE(child->awaitOutput("forked ", 10s));
    ASSERT_TRUE(child->awaitOutput("\n", 10s));
    EXPECT_EQ(refusal().substr(0, 44),
              "Another getter has the events of this client");
    child->kill();
    SqliteStore store(options);
    EXPECT_EQ(Getting(store, valve).take(), "open;");
    const auto at = child->output().find("forked ") + 7;
    const int worker = std::stoi(child->output().substr(at));
    EXPECT_EQ(::kill(worker, 0), 0);
    ::kill(worker, SIGKILL);
}

TEST_F(LeaseFileTest, AForkedChildLeavesTheLeaseOfItsParentAlone) {
    SqliteStore store(options);
    auto getting = std::make_unique<Getting>(store, valve);
    EXPECT_EQ(getting->begin(), "open;");
    EXPECT_EQ(openLeases(), 1);
    ChildProcess child([&] {
        const int open = openLeases();
        getting.reset();
        return open;
    });
    ASSERT_TRUE(child.awaitEnd(10s));
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    EXPECT_TRUE(fs::exists(lease));
    EXPECT_EQ(refusal().substr(0, 44),
              "Another getter has the events of this client");
    getting->complete();
    EXPECT_EQ(taken(), "");
}

TEST_F(LeaseFileTest, AStoreThatIsClosedEndsItsLeases) {
    auto store = std::make_unique<SqliteStore>(options);
    auto getting = std::make_unique<Getting>(*store, valve);
    SqliteStore other(options);
    Getting others(other, valve);
    EXPECT_EQ(getting->begin(), "open;");
    store.reset();
    EXPECT_FALSE(fs::exists(lease));
    EXPECT_EQ(openLeases(), 0);
    EXPECT_EQ(others.begin(), "open;");
    getting.reset();
    EXPECT_TRUE(fs::exists(lease));
}

TEST_F(LeaseFileTest, TheLastEndOfTheTransportEndsTheLeaseOfAnyThread) {
    OvMemTest::Environment environment;
    environment.set("OVMEM_STORE", "sqlite:" + options.path);
    ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
    std::atomic<bool> got = false;
    std::atomic<bool> end = false;
    std::thread thread([&] {
        const auto outcome = OvMemTest::streamedExchange(
            OvMemTest::headerBlock("getEvents", "plant", "valve"), {"probe"});
        EXPECT_EQ(outcome.reply, "open;");
        got = true;
        while (!end) {
            std::this_thread::yield();
        }
    });
    while (!got) {
        std::this_thread::yield();
    }
    EXPECT_TRUE(fs::exists(lease));
    EXPECT_EQ(OvMem_Term(), 0);
    EXPECT_FALSE(fs::exists(lease));
    end = true;
    thread.join();
    EXPECT_EQ(taken(), "open;");
}

TEST_F(LeaseFileTest, TheEndOfAThreadEndsItsLease) {
    OvMemTest::Environment environment;
    environment.set("OVMEM_STORE", "sqlite:" + options.path);
    ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0);
    std::thread([] {
        const auto outcome = OvMemTest::streamedExchange(
            OvMemTest::headerBlock("getEvents", "plant", "valve"), {"probe"});
        EXPECT_EQ(outcome.reply, "open;");
    }).join();
    EXPECT_FALSE(fs::exists(lease));
    EXPECT_EQ(OvMem_Term(), 0);
}

TEST_F(LeaseFileTest, ALinkInItsPlaceIsRefusedAndNotFollowed) {
    const std::string other = folder.write("other", "kept");
    fs::create_symlink(other, lease);
    EXPECT_EQ(refusal(),
              refusalBecause("is a symbolic link. Remove it, then repeat the "
                             "call."));
    fs::remove(lease);
    fs::create_hard_link(other, lease);
    EXPECT_EQ(refusal(),
              refusalBecause("is a file with several names. Remove it, then "
                             "repeat the call."));
    fs::remove(lease);
    ASSERT_EQ(::mkfifo(lease.c_str(), 0600), 0);
    EXPECT_EQ(refusal(),
              refusalBecause("is no regular file. Remove it, then repeat the "
                             "call."));
    fs::remove(lease);
    EXPECT_EQ(OvMemTest::readFile(other), "kept");
    EXPECT_EQ(taken(), "open;");
}

TEST_F(LeaseFileTest, ThatCannotBeTakenIsAnErrorThatSaysWhatToDo) {
    if (!OvMemTest::SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    const auto because = [&](SystemCall::Kind call, int error) {
        const FailingLease failing(call, error);
        return refusal();
    };
    constexpr auto open = SystemCall::Kind::open;
    EXPECT_EQ(because(open, EMFILE),
              refusalBecause("cannot be taken (Too many open files). Close "
                             "files or raise the limit of open files, then "
                             "repeat the call."));
    EXPECT_EQ(because(open, ENOSPC),
              refusalBecause("cannot be taken (No space left on device). Free "
                             "space on its disk, then repeat the call."));
    EXPECT_EQ(because(open, EROFS),
              refusalBecause("cannot be taken (Read-only file system). Make "
                             "its folder writable, or set OVMEM_STORE to a "
                             "place that is."));
    EXPECT_EQ(because(open, EACCES),
              refusalBecause("cannot be taken (Permission denied). Make its "
                             "folder writable, or set OVMEM_STORE to a place "
                             "that is."));
    EXPECT_EQ(openLeases(), 0);
    EXPECT_EQ(taken(), "open;");
}

TEST_F(LeaseFileTest, ThatCannotBeLockedIsAnErrorAndLeavesNothingOpen) {
    if (!OvMemTest::SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    SqliteStore store(options);
    store.sharedClients(valve);
    Getting getting(store, valve);
    {
        const FailingLease failing(SystemCall::Kind::lock, ENOLCK);
        EXPECT_EQ(getting.refusal(),
                  refusalBecause("cannot be taken (No locks available). Set "
                                 "OVMEM_STORE to a file on a local file "
                                 "system, or free locks of files, then repeat "
                                 "the call."));
    }
    EXPECT_EQ(openLeases(), 0);
    EXPECT_EQ(getting.take(), "open;");
}
