#include <chrono>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "emulator/store/GatePassage.h"
#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/SystemCalls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;
using OvMemTest::pump;
using OvMemTest::SystemCall;
using OvMemTest::SystemCallWatcher;
using OvMemTest::valve;

// What becomes of a put when files of the store lose their names: while it is
// being opened or closed, and together with its folder.

namespace {

namespace fs = std::filesystem;

// Moves another store into the place of one when this thread has opened its
// database, and before it opens the log.
class ReplacingStore : public SystemCallWatcher {
public:
    ReplacingStore(std::string path, std::string replacement)
        : store(std::move(path)), other(std::move(replacement)) {}

    Verdict before(const SystemCall&) override { return {}; }

    void after(const SystemCall& call, long) override {
        if (call.kind != SystemCall::Kind::open || call.path != store || done) {
            return;
        }
        done = true;
        for (const char* end : {"-wal", "-shm"}) {
            fs::remove(store + end);
        }
        for (const char* end : {".gate", ""}) {
            fs::rename(other + end, store + end);
        }
    }

    bool isDone() const { return done; }

private:
    const std::string store;
    const std::string other;
    bool done = false;
};

// Something happens just when this thread is about to pass a gate.
class MeanwhileAtTheGate : public SystemCallWatcher {
public:
    MeanwhileAtTheGate(std::string path, std::function<void()> what)
        : gate(std::move(path)), deed(std::move(what)) {}

    Verdict before(const SystemCall& call) override {
        if (call.kind == SystemCall::Kind::lock && call.path == gate && deed) {
            std::exchange(deed, nullptr)();
        }
        return {};
    }

private:
    const std::string gate;
    std::function<void()> deed;
};

class LostNames : public testing::Test {
protected:
    LostNames() {
        fs::create_directory(folder.file("store"));
        makeStore(options);
    }

    static void makeStore(const SqliteOptions& where) {
        SqliteStore store(where);
        store.registerClient(pump);
        store.registerClient(valve);
    }

    void put(const std::string& text) const {
        SqliteStore(options).putEvents(pump, text);
    }

    void remove(const std::string& end) const {
        ASSERT_TRUE(fs::remove(options.path + end)) << end;
    }

    void moveStore(const std::string& from, const std::string& to) const {
        fs::create_directory(folder.file(to));
        for (const char* end : {"", "-wal", "-shm", ".gate"}) {
            fs::rename(folder.file(from + "/events.db") + end,
                       folder.file(to + "/events.db") + end);
        }
    }

    // What valve gets from the files that have the names now.
    std::string pending() const {
        return SqliteStore(options).getEvents(valve).value().text;
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("store/events.db")};
};

}  // namespace

TEST_F(LostNames, AReaderThatEndsLeavesTheLogThatOthersHaveMadeMeanwhile) {
    auto turn = std::make_unique<GatePassage>(folder.file("turn"));
    ChildProcess reader([this] {
        SqliteStore store(options);
        std::cout << "read " << store.getEvents(valve)->text << std::endl;
        { const GatePassage wait(folder.file("turn")); }
        return 0;
    });
    ASSERT_TRUE(reader.awaitOutput("read", 30s)) << reader.errors();
    remove("-wal");
    remove("-shm");
    put("kept;");
    turn.reset();
    ASSERT_TRUE(reader.awaitEnd(30s));
    EXPECT_EQ(reader.exitStatus(), 0) << reader.errors();
    EXPECT_EQ(pending(), "kept;");
}

TEST_F(LostNames, AForkSavesWhatIsOnlyInALogWithoutAName) {
    for (const bool both : {false, true}) {
        SqliteStore store(options);
        store.putEvents(pump, "kept;");
        remove("-wal");
        if (both) {
            remove("-shm");
        }
        ChildProcess child([] { return 0; });
        ASSERT_TRUE(child.awaitEnd(30s));
    }
    EXPECT_EQ(pending(), "kept;kept;");
}

TEST_F(LostNames, TheEndOfAStoreSavesWhatIsOnlyInALogWithoutAName) {
    {
        SqliteStore store(options);
        store.putEvents(pump, "kept;");
        remove("-wal");
    }
    EXPECT_EQ(pending(), "kept;");
}

TEST_F(LostNames, AForkWaitsAtTheGateForAMomentOnly) {
    SqliteStore store(options);
    store.putEvents(pump, "lost;");
    remove("-wal");
    const GatePassage shut(options.path + ".gate");
    const auto start = std::chrono::steady_clock::now();
    ChildProcess child([] { return 0; });
    EXPECT_LT(std::chrono::steady_clock::now() - start, 8s);
    EXPECT_TRUE(child.awaitEnd(30s));
}

TEST_F(LostNames, AnEndSavesALogThatLosesItsNameAtThatMoment) {
    if (!SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    auto store = std::make_unique<SqliteStore>(options);
    store->putEvents(pump, "kept;");
    {
        const MeanwhileAtTheGate meanwhile(options.path + ".gate",
                                           [this] { remove("-wal"); });
        store.reset();
    }
    EXPECT_EQ(pending(), "kept;");
}

TEST_F(LostNames, AnEndLeavesALogThatTakesTheNameAtThatMoment) {
    if (!SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    auto store = std::make_unique<SqliteStore>(options);
    store->putEvents(pump, "x");
    {
        const MeanwhileAtTheGate meanwhile(options.path + ".gate", [this] {
            for (const char* end : {"-wal", "-shm"}) {
                fs::rename(folder.write("other", "of others"),
                           options.path + end);
            }
        });
        store.reset();
    }
    EXPECT_EQ(OvMemTest::readFile(options.path + "-wal"), "of others");
}

TEST_F(LostNames, NoGateIsMadeForAStoreThatWasMovedAway) {
    for (const bool forks : {true, false}) {
        auto store = std::make_unique<SqliteStore>(options);
        store->putEvents(pump, "moved;");
        moveStore("store", "moved");
        if (forks) {
            const ChildProcess child([] { return 0; });
        }
        store.reset();
        EXPECT_TRUE(fs::is_empty(folder.file("store"))) << forks;
        moveStore("moved", "store");
    }
    EXPECT_EQ(pending(), "moved;moved;");
}

TEST_F(LostNames, APutGoesIntoTheFolderThatHasTheNameNow) {
    const std::string named = folder.file("store");
    const std::string moved = folder.file("moved");
    SqliteStore store(options);
    store.putEvents(pump, "one;");
    // As if the files had been made a minute ago.
    fs::last_write_time(
        named, fs::file_time_type::clock::now() - std::chrono::minutes(1));
    store.putEvents(pump, "two;");
    fs::rename(named, moved);
    fs::copy(moved, named, fs::copy_options::recursive);
    fs::last_write_time(named, fs::last_write_time(moved));
    store.putEvents(pump, "three;");
    EXPECT_EQ(pending(), "one;two;three;");
}

TEST_F(LostNames, APutGoesIntoTheStoreThatTookTheNameWhileItWasOpened) {
    if (!SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    SqliteOptions other = options;
    other.path = folder.file("other.db");
    makeStore(other);
    put("in the former store;");
    SqliteStore store(options);
    {
        const ReplacingStore replacing(options.path, other.path);
        store.putEvents(pump, "arrives;");
        EXPECT_TRUE(replacing.isDone());
    }
    EXPECT_EQ(pending(), "arrives;");
}
