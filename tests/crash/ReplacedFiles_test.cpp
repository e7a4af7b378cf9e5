#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "emulator/store/GatePassage.h"
#include "tests/crash/Looping.h"
#include "tests/crash/Received.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/NextOperations.h"
#include "tests/emulator/Wire.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Repeat.h"
#include "tests/support/TemporaryFolder.h"

using namespace OvMemTest;
using namespace std::chrono_literals;
using Orvane::Net::OvModelEventManager::Emulator::GatePassage;
namespace fs = std::filesystem;

// The files of a store are removed or replaced while two processes put as fast
// as they can. Each answered put is in the store that bears the name
// afterwards, or in the one that was moved away.

namespace {

enum class Deed {
    removeLog,
    removeIndex,
    removeLogAndIndex,
    removeGate,
    replaceGate,
    moveStore,     // nothing in its place
    moveDatabase,  // with its log; the gate stays
    replaceStore,  // another one in its place
    emptyLog       // another file in the place of the log
};

constexpr unsigned deeds = 9;

void inTransport(const std::string& file, const std::function<void()>& work) {
    Environment environment;
    environment.set("OVMEM_STORE", "sqlite:" + file);
    ASSERT_EQ(OvMem_Init(&std::malloc, &std::free), 0) << lastError();
    work();
    EXPECT_EQ(OvMem_Term(), 0);
}

void makeStore(const std::string& file) {
    inTransport(file, [] {
        for (const char* client : {"a", "b", "watcher"}) {
            EXPECT_EQ(request("registerClient", "plant", client).status, -1);
        }
    });
}

std::string takeAll(const std::string& file) {
    std::string all;
    inTransport(file, [&] {
        const Outcome got = request("getEvents", "plant", "watcher");
        EXPECT_EQ(got.status, -1) << got;
        all = got.reply;
    });
    return all;
}

// Of the store at `path` and what stands beside it.
bool holdsRemovedFile(const ChildProcess& process, const std::string& path) {
    const fs::path files = "/proc/" + std::to_string(process.id()) + "/fd";
    for (const auto& entry : fs::directory_iterator(files)) {
        std::error_code closed;
        const std::string name = fs::read_symlink(entry, closed).string();
        if (name.starts_with(path) && name.ends_with(" (deleted)")) {
            return true;
        }
    }
    return false;
}

// The parameter: how many trials.
class ReplacedFiles : public testing::TestWithParam<std::uint64_t> {
protected:
    std::string file(const std::string& end) const {
        return folder->file("events.db" + end);
    }
    std::string moved(const std::string& end) const {
        return folder->file("moved.db" + end);
    }

    void move(const std::vector<std::string>& ends) const {
        for (const std::string& end : ends) {
            fs::rename(file(end), moved(end));
        }
    }

    void carryOut(Deed deed) const {
        // Several files are changed inside the gate, so that nobody sees half
        // of it.
        std::optional<GatePassage> passage;
        if (!goesOn(deed) || deed == Deed::removeLogAndIndex) {
            passage.emplace(file(".gate"));
        }
        switch (deed) {
            case Deed::removeLog:
                fs::remove(file("-wal"));
                break;
            case Deed::emptyLog:
                fs::rename(folder->write("new", ""), file("-wal"));
                break;
            case Deed::removeIndex:
                fs::remove(file("-shm"));
                break;
            case Deed::removeLogAndIndex:
                fs::remove(file("-shm"));
                fs::remove(file("-wal"));
                break;
            case Deed::removeGate:
                fs::remove(file(".gate"));
                break;
            case Deed::replaceGate:
                fs::rename(folder->write("new", ""), file(".gate"));
                break;
            case Deed::moveStore:
                move({"", "-wal", "-shm", ".gate"});
                break;
            case Deed::moveDatabase:
                move({"", "-wal", "-shm"});
                break;
            case Deed::replaceStore:
                move({"", "-wal", "-shm"});
                fs::rename(folder->file("other.db"), file(""));
                break;
        }
    }

    static bool goesOn(Deed deed) {
        return deed != Deed::moveStore && deed != Deed::moveDatabase &&
               deed != Deed::replaceStore;
    }

    // What the putters are told when their store is no longer there.
    static std::string refusalAfter(Deed deed) {
        switch (deed) {
            case Deed::moveStore:
                return "is not registered";
            case Deed::replaceStore:
                return "has lost steps that were answered";
            default:
                return "has vanished";
        }
    }

    static void awaitPuts(ChildProcess& putter, std::size_t puts) {
        ASSERT_TRUE(putter.awaitOutput(std::string(puts, ';'), 60s))
            << putter.output() << putter.errors();
    }

    // What only a removed log holds is lost if its processes are killed before
    // they notice. They may have put much that was not read from them yet.
    void awaitNotice(ChildProcess& putter) const {
        while (!HasFatalFailure() && holdsRemovedFile(putter, file(""))) {
            awaitPuts(putter, putter.output().size() + 1);
        }
    }

    void playTrial(std::uint64_t seed) {
        std::mt19937_64 random(seed);
        const auto deed = static_cast<Deed>(seed % deeds);
        folder = std::make_unique<TemporaryFolder>();
        makeStore(file(""));
        makeStore(folder->file("other.db"));
        Environment environment;
        environment.set("OVMEM_STORE", "sqlite:" + file(""));
        std::vector<std::unique_ptr<ChildProcess>> putters;
        for (const char* client : {"a", "b"}) {
            const std::uint64_t own = random();
            putters.push_back(std::make_unique<ChildProcess>([client, own] {
                return OvMem_Init(&std::malloc, &std::free) != 0
                           ? 1
                           : putForEver(client, client, own,
                                        Registered::always);
            }));
        }
        const std::size_t before = 1 + random() % 20;
        for (const auto& putter : putters) {
            awaitPuts(*putter, before);
        }
        carryOut(deed);
        if (goesOn(deed)) {
            for (const auto& putter : putters) {
                awaitNotice(*putter);
                awaitPuts(*putter, putter->output().size() + 20);
            }
        }
        for (const auto& putter : putters) {
            if (goesOn(deed)) {
                putter->kill();
            } else {
                EXPECT_TRUE(putter->awaitEnd(60s));
                EXPECT_NE(putter->output().find(refusalAfter(deed)),
                          std::string::npos)
                    << putter->output();
            }
        }
        std::string all;
        if (fs::exists(moved(""))) {
            all = takeAll(moved(""));
        }
        if (goesOn(deed)) {
            all += takeAll(file(""));
        }
        expectPuts(all, "a", putters[0]->output());
        expectPuts(all, "b", putters[1]->output());
        inTransport(moved("") + ".new", [] { expectNextOperationsWork(); });
    }

    void expectPuts(const std::string& all, const std::string& name,
                    const std::string& output) {
        SCOPED_TRACE(name);
        answered +=
            expectArrivals(all, name, output.substr(0, output.find('!')));
    }

    std::uint64_t answered = 0;

private:
    std::unique_ptr<TemporaryFolder> folder;
};

}  // namespace

TEST_P(ReplacedFiles, LoseNoAnsweredPut) {
    std::uint64_t trials = 0;
    for (Rounds round(1, GetParam()); !HasFailure() && round.next();) {
        SCOPED_TRACE(round.how());
        playTrial(round.number());
        ++trials;
    }
    std::cout << trials << " trials, " << answered << " answered puts\n";
}

INSTANTIATE_TEST_SUITE_P(Quick, ReplacedFiles, testing::Values(12 * deeds));
INSTANTIATE_TEST_SUITE_P(Long, ReplacedFiles, testing::Values(110 * deeds));
