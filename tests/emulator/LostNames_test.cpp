#include <chrono>
#include <filesystem>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/SystemCalls.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
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

    // What valve gets from the files that have the names now.
    std::string pending() const {
        return SqliteStore(options).getEvents(valve).value().text;
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("store/events.db")};
};

}  // namespace

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
