#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Clients.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;
using OvMemTest::pump;
using OvMemTest::valve;

namespace {

// A lock of the program itself, which it takes over every fork. Its handlers
// are registered before those of the store, so that the store's run first.
std::mutex programLock;
std::atomic<bool> programLocks = false;

[[gnu::constructor(150)]] void registerHandlersOfTheProgram() {
    ::pthread_atfork(
        [] {
            if (programLocks) {
                programLock.lock();
            }
        },
        [] {
            if (programLocks) {
                programLock.unlock();
            }
        },
        [] {
            if (programLocks) {
                programLock.unlock();
            }
        });
}

void putAndSay(SqliteStore& store, const std::string& text) {
    store.putEvents(pump, text);
    std::cout << text << " is put" << std::endl;
}

// What a process does with the store before it forks two workers and ends: the
// first worker puts once the parent has ended, the second one when the first
// has ended, too.
[[noreturn]] void forkWorkersAndEnd(SqliteStore& store, bool orderly) {
    const auto end = [orderly] {
        if (orderly) {
            std::exit(0);
        }
        ::_exit(0);
    };
    const pid_t parent = ::getpid();
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) {
        std::abort();
    }
    if (::fork() == 0) {
        while (::getppid() == parent) {
            std::this_thread::yield();
        }
        putAndSay(store, "first;");
        end();
    }
    ::close(pipe[1]);
    if (::fork() == 0) {
        char byte = 0;
        if (::read(pipe[0], &byte, 1) == 0) {
            putAndSay(store, "second;");
        }
        end();
    }
    ::_exit(0);
}

class SqliteStoreForks : public testing::Test {
protected:
    SqliteStoreForks() {
        SqliteStore store(options);
        store.registerClient(pump);
        store.registerClient(valve);
    }

    std::string pending() {
        return SqliteStore(options).getEvents(valve).value().text;
    }

    void expectWhole() {
        SQLite::Database file(options.path);
        EXPECT_EQ(file.execAndGet("PRAGMA integrity_check").getString(), "ok");
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("events.db")};
};

}  // namespace

TEST_F(SqliteStoreForks, WhatWorkersPutOutlivesThemAndTheParentThatEndsFirst) {
    std::string expected;
    for (const bool orderly : {true, false, true, false}) {
        ChildProcess parent([this, orderly] {
            SqliteStore store(options);
            store.registerClient(pump);
            forkWorkersAndEnd(store, orderly);
            return 0;
        });
        ASSERT_TRUE(parent.awaitOutput("second; is put", 30s))
            << parent.output() << parent.errors();
        expected += "first;second;";
        EXPECT_EQ(pending(), expected);
    }
    expectWhole();
}

TEST_F(SqliteStoreForks, AChildThatClosesInheritedFilesHarmsNeitherItsNorOurs) {
    SqliteStore store(options);
    store.putEvents(pump, "parent;");
    ChildProcess child([&] {
        for (int file = 3; file < 64; ++file) {
            ::close(file);
        }
        const auto name = [this](std::size_t i) {
            return folder.file("own" + std::to_string(i));
        };
        std::array<int, 20> files{};
        for (std::size_t i = 0; i < files.size(); ++i) {
            files.at(i) = ::open(name(i).c_str(), O_RDWR | O_CREAT, 0600);
        }
        store.putEvents(pump, "child;");
        for (std::size_t i = 0; i < files.size(); ++i) {
            if (::write(files.at(i), "mine", 4) != 4 ||
                std::filesystem::file_size(name(i)) != 4) {
                return 1;
            }
        }
        return 0;
    });
    ASSERT_TRUE(child.awaitEnd(30s));
    EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    store.putEvents(pump, "parent;");
    EXPECT_EQ(pending(), "parent;child;parent;");
    expectWhole();
}

TEST_F(SqliteStoreForks, NothingOfTheStoreIsOpenInAChild) {
    SqliteStore store(options);
    store.putEvents(pump, "parent;");
    ChildProcess child([this] {
        namespace fs = std::filesystem;
        for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            if (fs::read_symlink(entry, gone)
                    .string()
                    .starts_with(options.path)) {
                return 1;
            }
        }
        return 0;
    });
    ASSERT_TRUE(child.awaitEnd(30s));
    EXPECT_EQ(child.exitStatus(), 0) << "a file of the store is open";
}

TEST_F(SqliteStoreForks, AForkWithALockOfTheProgramEndsAndSoDoesThePut) {
    ChildProcess process([this] {
        options.busyTimeoutMilliseconds = 200;
        SqliteStore store(options);
        std::atomic<bool> stop = false;
        std::atomic<int> puts = 0;
        std::thread putter([&] {
            while (!stop) {
                const std::lock_guard lock(programLock);
                try {
                    store.putEvents(pump, "x");
                    ++puts;
                } catch (const StoreError&) {
                    // The fork was waiting for the program's lock.
                }
            }
        });
        programLocks = true;
        for (int i = 0; i < 10; ++i) {
            const int before = puts;
            if (::fork() == 0) {
                std::_Exit(0);
            }
            while (puts == before) {
                std::this_thread::yield();
            }
        }
        programLocks = false;
        stop = true;
        putter.join();
        return 0;
    });
    ASSERT_TRUE(process.awaitEnd(60s)) << "deadlock";
    EXPECT_EQ(process.exitStatus(), 0) << process.errors();
}

TEST_F(SqliteStoreForks, WorkersOfManyRoundsLoseAndDoubleNothing) {
    constexpr int rounds = 20;
    std::string expected;
    SqliteStore store(options);
    for (int round = 0; round < rounds; ++round) {
        const std::string text = std::to_string(round) + ";";
        store.putEvents(pump, "p" + text);
        ChildProcess child([&] {
            store.putEvents(pump, "c" + text);
            ChildProcess grandchild([&] {
                store.putEvents(pump, "g" + text);
                return 0;
            });
            return grandchild.awaitEnd(30s) ? 0 : 1;
        });
        ASSERT_TRUE(child.awaitEnd(30s));
        EXPECT_EQ(child.exitStatus(), 0) << child.errors();
        expected += "p" + text + "c" + text + "g" + text;
    }
    EXPECT_EQ(store.getEvents(valve)->text, expected);
    expectWhole();
}
